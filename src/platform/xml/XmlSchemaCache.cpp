#include "XmlSchemaCache.h"

#include "XmlReason.h"
#include "XmlSchemaParts.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>

namespace vmk {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view SchemaNamespace = "http://www.w3.org/2001/XMLSchema";
constexpr qint64 LargestSchemaFile = 64LL * 1024 * 1024;

/// The state of one schema compilation on this thread.
class Compilation
{
public:
    explicit Compilation(QString mainFile)
        : main(std::move(mainFile))
    {
        current = this;
        xmlSetStructuredErrorFunc(this, takeError);
    }
    ~Compilation()
    {
        xmlSetStructuredErrorFunc(nullptr, nullptr);
        current = nullptr;
    }
    Compilation(const Compilation&) = delete;
    Compilation& operator=(const Compilation&) = delete;

    /// Reads a file of the schema; on failure, records the reason and returns nothing.
    std::optional<QByteArray> read(const QString& path)
    {
        const QFileInfo info(path);
        QFile file(path);
        QString reason;
        if (!info.exists())
            reason = u"file not found"_s;
        else if (!info.isFile())
            reason = u"not a file"_s;
        else if (info.size() > LargestSchemaFile)
            reason = u"file too large"_s;
        else if (!file.open(QIODevice::ReadOnly))
            reason = file.errorString();
        if (!reason.isEmpty()) {
            note(path, 0, reason);
            return std::nullopt;
        }
        return files.emplace_back(file.readAll());
    }

    /// Keeps only the first reason: the following errors result from it.
    void note(const QString& path, int line, const QString& reason)
    {
        if (problem.isEmpty())
            problem = path + (line > 0 ? u':' + QString::number(line) : QString()) + u": "_s + reason;
    }

    static xmlParserInputPtr load(const char* url, const char* id, xmlParserCtxtPtr context);
    static void takeError(void* self, xmlErrorPtr error);

    QString problem;
    std::vector<QByteArray> files;

private:
    QString main; // the path of the schema's main file
    static thread_local Compilation* current;
};

thread_local Compilation* Compilation::current = nullptr;

/// The path of a file URL as the user would write it; a URL of another kind is unchanged.
QString PathOfUrl(const char* url)
{
    const QUrl parsed = QUrl::fromEncoded(QByteArray(url));
    return parsed.isLocalFile() ? parsed.toLocalFile() : QString::fromUtf8(url);
}

/// libxml2 calls this for every file except the one it was given; only files of a schema are read.
xmlParserInputPtr Compilation::load(const char* url, const char*, xmlParserCtxtPtr context)
{
    if (current == nullptr || url == nullptr)
        return nullptr;
    const QUrl parsed = QUrl::fromEncoded(QByteArray(url));
    if (!parsed.isLocalFile()) {
        current->note(QString::fromUtf8(url), 0, u"only local files are read"_s);
        return nullptr;
    }
    const std::optional<QByteArray> bytes = current->read(parsed.toLocalFile());
    if (!bytes)
        return nullptr;
    xmlParserInputBufferPtr buffer = xmlParserInputBufferCreateMem(
        bytes->constData(), static_cast<int>(bytes->size()), XML_CHAR_ENCODING_NONE);
    xmlParserInputPtr input = xmlNewIOInputStream(context, buffer, XML_CHAR_ENCODING_NONE);
    if (input != nullptr)
        input->filename = reinterpret_cast<char*>(xmlStrdup(reinterpret_cast<const xmlChar*>(url)));
    return input;
}

void Compilation::takeError(void* self, xmlErrorPtr error)
{
    // Without one of its parts, a schema would refuse valid books, so that this warning is an error.
    const bool missingPart
        = error->code == XML_SCHEMAP_WARN_UNLOCATED_SCHEMA || error->code == XML_SCHEMAP_WARN_SKIP_SCHEMA;
    if (error->level < XML_ERR_ERROR && !missingPart)
        return;
    const std::string reason = TidyReason(error->message == nullptr ? "" : error->message);
    auto& compilation = *static_cast<Compilation*>(self);
    const bool isNamed = error->file != nullptr && *error->file != '\0';
    compilation.note(isNamed ? PathOfUrl(error->file) : compilation.main, error->line,
                     QString::fromStdString(reason));
}

XmlDocPtr ReadTree(const QByteArray& bytes, const QByteArray& url)
{
    return XmlDocPtr(xmlReadMemory(bytes.constData(), static_cast<int>(bytes.size()), url.constData(),
                                   nullptr, XML_PARSE_NONET));
}

std::string Attribute(const xmlNode* node, const char* name)
{
    xmlChar* value = xmlGetNoNsProp(const_cast<xmlNode*>(node), reinterpret_cast<const xmlChar*>(name));
    std::string text = value == nullptr ? std::string() : reinterpret_cast<const char*>(value);
    xmlFree(value);
    return text;
}

bool IsSchemaNode(const xmlNode* node, std::string_view name)
{
    return node->type == XML_ELEMENT_NODE && node->ns != nullptr
        && SchemaNamespace == reinterpret_cast<const char*>(node->ns->href)
        && name == reinterpret_cast<const char*>(node->name);
}

/// True for an attribute declaration whose type is directly xs:ID.
bool DeclaresId(const xmlNode* attribute)
{
    const std::string type = Attribute(attribute, "type");
    const size_t colon = type.find(':');
    const std::string prefix = colon == std::string::npos ? "" : type.substr(0, colon);
    if (type.substr(colon == std::string::npos ? 0 : colon + 1) != "ID")
        return false;
    const xmlNs* space
        = xmlSearchNs(attribute->doc, const_cast<xmlNode*>(attribute),
                      prefix.empty() ? nullptr : reinterpret_cast<const xmlChar*>(prefix.c_str()));
    return space != nullptr && SchemaNamespace == reinterpret_cast<const char*>(space->href);
}

/// Records for each attribute declared below `root` whether all its declarations so far have the type xs:ID.
void CollectIdAttributes(const xmlNode* root, std::map<std::string, bool>& declared)
{
    const xmlNode* node = root;
    while (node != nullptr) {
        if (IsSchemaNode(node, "attribute")) {
            if (const std::string name = Attribute(node, "name"); !name.empty()) {
                const auto [entry, isNew] = declared.emplace(name, true);
                entry->second = entry->second && DeclaresId(node);
            }
        }
        // The next in document order.
        if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
            node = node->children;
            continue;
        }
        while (node != nullptr && node != root && node->next == nullptr)
            node = node->parent;
        node = node == nullptr || node == root ? nullptr : node->next;
    }
}

std::vector<std::string> IdAttributes(const std::vector<QByteArray>& files)
{
    std::map<std::string, bool> declared;
    for (const QByteArray& file : files)
        if (const XmlDocPtr tree = ReadTree(file, QByteArray()))
            CollectIdAttributes(xmlDocGetRootElement(tree.get()), declared);
    std::vector<std::string> names;
    for (const auto& [name, isId] : declared)
        if (isId)
            names.push_back(name);
    return names;
}

} // namespace

void InitLibXml()
{
    static std::once_flag once;
    std::call_once(once, [] {
        xmlInitParser();
        xmlCatalogSetDefaults(XML_CATA_ALLOW_NONE);
        xmlSetExternalEntityLoader(Compilation::load);
    });
}

XmlSchema::XmlSchema()
    : compiled(std::make_unique<Parts>())
{
}

XmlSchema::~XmlSchema() = default;

std::shared_ptr<const XmlSchema> XmlSchema::compile(const QString& location, QString* problem)
{
    InitLibXml();
    problem->clear();
    const QString path = QFileInfo(location).absoluteFilePath();
    const QByteArray url = QUrl::fromLocalFile(path).toEncoded();
    Compilation compilation(path);
    const std::shared_ptr<XmlSchema> result(new XmlSchema);
    if (const std::optional<QByteArray> bytes = compilation.read(path))
        result->compiled->tree = ReadTree(*bytes, url);
    if (result->compiled->tree) {
        const std::unique_ptr<xmlSchemaParserCtxt, LibXmlDeleter<xmlSchemaFreeParserCtxt>> parser(
            xmlSchemaNewDocParserCtxt(result->compiled->tree.get()));
        xmlSchemaSetParserStructuredErrors(parser.get(), Compilation::takeError, &compilation);
        result->compiled->schema.reset(xmlSchemaParse(parser.get()));
    }
    if (!result->compiled->schema)
        compilation.note(path, 0, u"not an XML schema"_s);
    if (!compilation.problem.isEmpty()) {
        *problem = compilation.problem;
        return nullptr;
    }
    result->ids = IdAttributes(compilation.files);
    if (const xmlChar* target = result->compiled->schema->targetNamespace)
        result->target = reinterpret_cast<const char*>(target);
    return result;
}

bool XmlSchemaCache::add(const QString& namespaceUri, const QString& location)
{
    const std::string uri = namespaceUri.toStdString();
    std::shared_ptr<const XmlSchema> schema = XmlSchema::compile(location, &lastProblem);
    if (!schema)
        return false;
    if (schema->targetNamespace() != uri) {
        lastProblem = location + u": the schema is for the namespace \""_s
            + QString::fromStdString(schema->targetNamespace()) + u"\""_s;
        return false;
    }
    const auto known = std::ranges::find(entries, uri, &Entry::namespaceUri);
    if (known != entries.end())
        known->schema = std::move(schema);
    else
        entries.push_back({uri, std::move(schema)});
    return true;
}

const XmlSchema* XmlSchemaCache::find(std::string_view namespaceUri) const
{
    if (entries.empty())
        return nullptr;
    const auto known = std::ranges::find(entries, namespaceUri, &Entry::namespaceUri);
    return (known != entries.end() ? *known : entries.front()).schema.get();
}

} // namespace vmk
