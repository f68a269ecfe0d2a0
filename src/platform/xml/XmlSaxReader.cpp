#include "XmlSaxReader.h"

#include "LibXml.h"
#include "TextMask.h"
#include "XmlReason.h"
#include "XmlSchemaCache.h"
#include "XmlValidation.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace vmk {

namespace {

std::string_view View(const xmlChar* text)
{
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(text));
}

std::string_view View(const xmlChar* text, int length)
{
    return {reinterpret_cast<const char*>(text), static_cast<size_t>(length)};
}

std::string QName(const xmlChar* name, const xmlChar* prefix)
{
    return prefix == nullptr ? std::string(View(name))
                             : std::string(View(prefix)) + ':' + std::string(View(name));
}

/// Sorts the attributes of one tag into the order in `tag`; those that it does not contain come last.
void SortAsWritten(std::vector<XmlAttribute>& attributes, std::string_view tag)
{
    constexpr std::string_view Blanks = " \t\r\n";
    auto placed = attributes.begin();
    size_t at = tag.find_first_of(Blanks);
    while (at != std::string_view::npos
           && (at = tag.find_first_not_of(Blanks, at)) != std::string_view::npos) {
        const size_t nameEnd = tag.find_first_of(" \t\r\n=", at);
        const size_t quote = tag.find_first_of("\"'", nameEnd);
        if (quote == std::string_view::npos)
            return;
        const auto named
            = std::find_if(placed, attributes.end(),
                           [name = tag.substr(at, nameEnd - at)](const auto& a) { return a.name == name; });
        if (named != attributes.end()) {
            std::rotate(placed, named, named + 1);
            ++placed;
        }
        at = tag.find(tag[quote], quote + 1);
        at = at == std::string_view::npos ? at : at + 1;
    }
}

/// One pass over one text.
class Pass
{
public:
    Pass(std::string_view bytes, XmlEncoding encoding, XmlSaxHandler* receiver, const XmlSchemaCache* cache)
        : input(bytes, encoding)
        , handler(receiver)
        , schemas(cache != nullptr && !cache->isEmpty() ? cache : nullptr)
    {
    }

    /// Returns the first error.
    XmlParseError run();
    /// Returns true if a pass over the masked text finds no error, which is faster. Otherwise there may be
    /// one.
    bool isValidWithMask();
    /// Returns all errors of validity, and the first of any other kind.
    std::vector<XmlParseError> runToTheEnd();

private:
    /// The position of an error, relative to the parser's position at that moment.
    enum class Place
    {
        Here,
        StartTag,
        EndTag,
        Text,
        Reference
    };
    struct Found
    {
        int code;
        Place place;
        qsizetype offset; // of the parser in the stream
        std::string reason;
        qsizetype markupEnd = 0; // the parser's position after the last event before the error
    };

    void read();
    void parse();
    [[nodiscard]] bool passes(const std::vector<Validation::Problem>& problems, Place place);
    [[nodiscard]] qsizetype readOn(char* out, qsizetype capacity);
    void fail(int code, Place place, std::string reason);
    [[nodiscard]] qsizetype offset() const;
    void noteMarkupEnd();
    [[nodiscard]] static qsizetype placeOf(const Found& error, std::string_view before);
    [[nodiscard]] std::vector<XmlParseError> report(std::span<const Found> errors) const;
    [[nodiscard]] bool listening() const { return !found && context->inSubset == 0; }
    [[nodiscard]] bool insideEntity() const;

    void flushText();
    void startDocument();
    void docTypeEnd();
    void startElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaceCount,
                      const xmlChar** namespaces, int attributeCount, int defaulted,
                      const xmlChar** attributes);
    void endElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri);
    void sendStart(const xmlChar* name, const xmlChar* prefix, int namespaceCount, const xmlChar** namespaces,
                   int attributeCount, const xmlChar** attributes);
    [[nodiscard]] std::string_view resolved(const xmlChar* value, std::string_view view,
                                            std::vector<std::string>& values);
    [[nodiscard]] std::string_view startTagText() const;
    void characters(const xmlChar* piece, int length);
    [[nodiscard]] std::string_view withoutMask(std::string_view piece);
    [[nodiscard]] bool sendToSchema(std::string_view piece);
    void cdata(std::string_view piece);
    void comment(std::string_view piece);
    void processingInstruction(std::string_view target, std::string_view data);
    void reference(const xmlChar* name);
    xmlEntityPtr countExpansion(xmlEntityPtr entity);
    void countDeclarations(std::string_view subset);
    void countDeclaredAttribute(const xmlChar* element, const xmlChar* value);
    struct Defaults // of one element
    {
        qsizetype count = 0;
        qsizetype bytes = 0;
    };
    [[nodiscard]] qsizetype workOf(const Defaults& added) const;
    [[nodiscard]] bool countDefaults(qsizetype work);
    [[nodiscard]] bool countDefaultsOf(const std::string& element);
    void parserError(const xmlError& error);

    static xmlSAXHandler callbacks();
    static Pass& of(void* data) { return *static_cast<Pass*>(data); }

    XmlInput input;
    XmlSaxHandler* handler;
    const XmlSchemaCache* schemas;
    xmlParserCtxtPtr context = nullptr;
    std::unique_ptr<Validation> validation;
    std::optional<TextMask> mask;
    std::optional<Found> found; // the error that ends the pass
    bool continues = false; // after errors of validity
    std::vector<Found> invalid; // errors after which the pass has continued
    std::string text; // characters since the last other event
    qsizetype markupEnd = 0; // the parser's position after the last other event
    qsizetype expanded = 0; // bytes of expanded entities
    qsizetype references = 0; // to entities, including those within entities
    int depth = 0;
    qsizetype docTypeBytes = 0;
    qsizetype declarationCount = 0;
    qsizetype alternatives = 0;
    int declaredAttributes = 0;
    std::unordered_map<std::string, Defaults> defaults; // by the name of the element
    qsizetype mostDefaultWork = 0; // of one element
    qsizetype defaultWork = 0; // for attributes that the document type adds to elements
};

XmlParseError Pass::run()
{
    read();
    return found ? report(std::span(&*found, 1)).front() : XmlParseError();
}

bool Pass::isValidWithMask()
{
    mask.emplace();
    read();
    return !found && mask->usable();
}

std::vector<XmlParseError> Pass::runToTheEnd()
{
    continues = true;
    read();
    if (found)
        invalid.push_back(*std::move(found));
    return report(invalid);
}

void Pass::read()
{
    if (!input.failure())
        parse();
    // Bytes that cannot be decoded end the text; the parser's own error at that end is not reported.
    if (const auto& failure = input.failure(); failure && (!found || found->offset >= failure->offset))
        found = Found{failure->errorCode, Place::Here, failure->offset, failure->reason};
}

void Pass::parse()
{
    InitLibXml();
    const std::unique_ptr<xmlParserCtxt, LibXmlDeleter<xmlFreeParserCtxt>> owner(xmlNewParserCtxt());
    context = owner.get();
    context->_private = this;
    const auto read = [](void* data, char* out, int capacity) {
        return static_cast<int>(of(data).readOn(out, capacity));
    };
    xmlParserInputBufferPtr buffer
        = xmlParserInputBufferCreateIO(read, nullptr, this, XML_CHAR_ENCODING_NONE);
    xmlParserInputPtr stream
        = buffer == nullptr ? nullptr : xmlNewIOInputStream(context, buffer, XML_CHAR_ENCODING_NONE);
    if (stream == nullptr || inputPush(context, stream) < 0) {
        found = Found{XmlNoParser, Place::Here, 0, "The XML parser cannot be initialized"};
        return;
    }

    // The stream is UTF-8 already: its declaration is ignored, and nothing is detected. The parser's own size
    // limits are off; depth, entities and attributes are limited here.
    xmlCtxtUseOptions(context, XML_PARSE_NONET | XML_PARSE_IGNORE_ENC | XML_PARSE_HUGE);
    context->encoding = xmlStrdup(reinterpret_cast<const xmlChar*>("UTF-8"));
    *context->sax = callbacks();
    context->userData = this;
    xmlParseDocument(context);

    validation.reset();
    if (!found && !input.failure() && context->wellFormed == 0)
        fail(context->errNo, Place::Here, "The text is not well-formed");
    const XmlDocPtr declarations(context->myDoc);
    context->myDoc = nullptr;
}

/// Passes the text to the parser piece by piece. At the end of a tag, the parser compares each attribute with
/// each other one, and for each name it searches all namespaces in scope. The sizes of its arrays show a tag
/// that would take minutes.
qsizetype Pass::readOn(char* out, qsizetype capacity)
{
    constexpr int MostAttributes = 2000;
    constexpr int MostNamespaces = 640;
    constexpr int SlotsOfAttribute = 5;
    constexpr int SlotsOfNamespace = 2;
    if (context->maxatts > MostAttributes * SlotsOfAttribute
        || context->nsMax > MostNamespaces * SlotsOfNamespace)
        fail(XmlTagTooLarge, Place::StartTag, "The tag has too many attributes");
    const qsizetype length = input.read(out, capacity);
    if (mask) {
        mask->forget(offset());
        mask->apply(out, static_cast<size_t>(length));
        if (!mask->usable())
            return 0;
    }
    constexpr int InternalSubset = 1;
    if (context->inSubset != InternalSubset)
        return length;
    countDeclarations({out, static_cast<size_t>(length)});
    return found ? 0 : length;
}

/// Counts a piece of the document type. A piece is counted before it is parsed: one declaration may be long
/// enough to take minutes.
void Pass::countDeclarations(std::string_view subset)
{
    docTypeBytes += static_cast<qsizetype>(subset.size());
    declarationCount += std::count(subset.begin(), subset.end(), '<');
    alternatives += std::count(subset.begin(), subset.end(), '|');
    if (docTypeBytes > XmlMaxDocTypeBytes || declarationCount > XmlMaxDeclarations
        || alternatives > XmlMaxAlternatives)
        fail(XmlDocTypeTooLarge, Place::Here, "The document type has too many declarations");
}

/// \param value  the default value; null if there is none
void Pass::countDeclaredAttribute(const xmlChar* element, const xmlChar* value)
{
    if (++declaredAttributes > XmlMaxDeclaredAttributes)
        fail(XmlDocTypeTooLarge, Place::Here, "The document type declares too many attributes");
    if (value == nullptr)
        return;
    Defaults& ofElement = defaults[std::string(View(element))];
    ++ofElement.count;
    ofElement.bytes += static_cast<qsizetype>(View(value).size());
    mostDefaultWork = std::max(mostDefaultWork, workOf(ofElement));
}

/// The parser's work for the default values of an element: it compares them with each other and with the
/// namespaces in scope, also if the tag itself contains them.
qsizetype Pass::workOf(const Defaults& added) const
{
    constexpr qsizetype WorkPerAttribute = 16;
    constexpr qsizetype ComparisonsPerWork = 8;
    return added.bytes
        + added.count * (WorkPerAttribute + (added.count + context->nsNr) / ComparisonsPerWork);
}

/// Counts work for default values; returns false if it exceeds a multiple of the text's size.
bool Pass::countDefaults(qsizetype work)
{
    constexpr qsizetype WorkPerByte = 4;
    defaultWork += work;
    return defaultWork <= XmlMaxEntityExpansion + WorkPerByte * offset();
}

/// Counts the work for the default values of an element.
bool Pass::countDefaultsOf(const std::string& element)
{
    const auto known = defaults.find(element);
    if (known == defaults.end() || countDefaults(workOf(known->second)))
        return true;
    fail(XmlDocTypeTooLarge, Place::StartTag, "The document type adds too many attributes");
    return false;
}

void Pass::fail(int code, Place place, std::string reason)
{
    if (found)
        return;
    found = Found{code, insideEntity() ? Place::Reference : place, offset(), std::move(reason), markupEnd};
    input.stop();
}

/// Records errors of validity. Returns false if the pass ends at them.
bool Pass::passes(const std::vector<Validation::Problem>& problems, Place place)
{
    if (problems.empty())
        return true;
    if (!continues) {
        fail(problems.front().code, place, problems.front().reason);
        return false;
    }
    for (const Validation::Problem& problem : problems)
        invalid.push_back(
            {problem.code, insideEntity() ? Place::Reference : place, offset(), problem.reason, markupEnd});
    return true;
}

qsizetype Pass::offset() const
{
    const xmlParserInput& stream = *context->inputTab[0];
    return static_cast<qsizetype>(stream.consumed) + (stream.cur - stream.base);
}

void Pass::noteMarkupEnd()
{
    if (!found)
        markupEnd = offset();
}

bool Pass::insideEntity() const
{
    return context->depth > 0;
}

/// \param before  the stream up to the error or farther
qsizetype Pass::placeOf(const Found& error, std::string_view before)
{
    if (error.place == Place::Here)
        return error.offset;
    before = before.substr(0, static_cast<size_t>(error.offset));
    const auto orHere
        = [&error](size_t at) { return at == std::string_view::npos ? error.offset : qsizetype(at); };
    if (error.place == Place::Reference)
        return orHere(before.rfind('&'));
    if (error.place == Place::Text) {
        // After a start tag the parser's position is before its ">".
        auto at = static_cast<size_t>(error.markupEnd);
        if (at < before.size() && before[at] == '/')
            ++at;
        if (at < before.size() && before[at] == '>')
            ++at;
        return orHere(before.find_first_not_of(" \t\r\n", at));
    }
    // Neither kind of tag contains a "<" except as its first character.
    const size_t open = before.rfind('<');
    const bool behindSlash = error.place == Place::EndTag && before.compare(open, 2, "</") == 0;
    return orHere(open) + (behindSlash ? 2 : 0);
}

/// The errors of one tag have the same position, which is searched for once.
std::vector<XmlParseError> Pass::report(std::span<const Found> errors) const
{
    std::string room;
    const bool isSearched
        = std::ranges::any_of(errors, [](const Found& e) { return e.place != Place::Here; });
    const std::string_view before
        = isSearched ? input.prefix(errors.back().offset, room) : std::string_view();
    std::vector<qsizetype> places;
    places.reserve(errors.size());
    for (size_t i = 0; i < errors.size(); ++i) {
        const bool isSame
            = i > 0 && errors[i].offset == errors[i - 1].offset && errors[i].place == errors[i - 1].place;
        places.push_back(isSame ? places.back() : placeOf(errors[i], before));
        // The positions are found in one pass. Only an error in an entity can be before an earlier one.
        if (i > 0)
            places.back() = std::max(places.back(), places[i - 1]);
    }
    const std::vector<XmlPosition> positions = input.locate(places);
    std::vector<XmlParseError> reported(errors.size());
    for (size_t i = 0; i < errors.size(); ++i) {
        static_cast<XmlPosition&>(reported[i]) = positions[i];
        reported[i].errorCode = errors[i].code;
        reported[i].reason
            = QString::fromUtf8(errors[i].reason.data(), static_cast<qsizetype>(errors[i].reason.size()));
    }
    return reported;
}

// ---------------------------------------------------------------- the parser's events

xmlSAXHandler Pass::callbacks()
{
    xmlSAXHandler sax = {};
    sax.initialized = XML_SAX2_MAGIC;
    sax.startDocument = [](void* pass) { of(pass).startDocument(); };
    // Some errors are reported with the parser's context as the first argument, whatever `userData` is.
    sax.serror = [](void*, xmlErrorPtr error) {
        of(static_cast<xmlParserCtxtPtr>(error->ctxt)->_private).parserError(*error);
    };

    // libxml2 keeps the declarations of the document type in a document without elements.
    sax.internalSubset = [](void* pass, const xmlChar* name, const xmlChar* id, const xmlChar* location) {
        of(pass).noteMarkupEnd();
        xmlSAX2InternalSubset(of(pass).context, name, id, location);
    };
    sax.externalSubset
        = [](void* pass, const xmlChar*, const xmlChar*, const xmlChar*) { of(pass).docTypeEnd(); };
    sax.entityDecl
        = [](void* pass, const xmlChar* name, int type, const xmlChar* id, const xmlChar* location,
             xmlChar* content) { xmlSAX2EntityDecl(of(pass).context, name, type, id, location, content); };
    sax.unparsedEntityDecl = [](void* pass, const xmlChar* name, const xmlChar* id, const xmlChar* location,
                                const xmlChar* notation) {
        xmlSAX2UnparsedEntityDecl(of(pass).context, name, id, location, notation);
    };
    // The parser itself keeps the default values; a document has no use for the enumerations.
    sax.attributeDecl = [](void* pass, const xmlChar* element, const xmlChar*, int, int, const xmlChar* value,
                           xmlEnumerationPtr values) {
        xmlFreeEnumeration(values);
        of(pass).countDeclaredAttribute(element, value);
    };
    sax.getEntity = [](void* pass, const xmlChar* name) {
        return of(pass).countExpansion(xmlSAX2GetEntity(of(pass).context, name));
    };
    sax.getParameterEntity = [](void* pass, const xmlChar* name) {
        return of(pass).countExpansion(xmlSAX2GetParameterEntity(of(pass).context, name));
    };
    sax.reference = [](void* pass, const xmlChar* name) { of(pass).reference(name); };

    sax.startElementNs
        = [](void* pass, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaceCount,
             const xmlChar** namespaces, int attributeCount, int defaulted, const xmlChar** attributes) {
              of(pass).startElement(name, prefix, uri, namespaceCount, namespaces, attributeCount, defaulted,
                                    attributes);
              // The rest of the buffer may contain a thousand tags, each with the work of its default values.
              if (of(pass).found && !of(pass).insideEntity())
                  xmlStopParser(of(pass).context);
          };
    sax.endElementNs = [](void* pass, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
        of(pass).endElement(name, prefix, uri);
    };
    sax.characters = [](void* pass, const xmlChar* piece, int length) { of(pass).characters(piece, length); };
    sax.ignorableWhitespace = sax.characters; // the same function: libxml2 then need not tell the two apart
    sax.cdataBlock
        = [](void* pass, const xmlChar* piece, int length) { of(pass).cdata(View(piece, length)); };
    sax.comment = [](void* pass, const xmlChar* piece) { of(pass).comment(View(piece)); };
    sax.processingInstruction = [](void* pass, const xmlChar* target, const xmlChar* data) {
        of(pass).processingInstruction(View(target), View(data));
    };
    return sax;
}

void Pass::parserError(const xmlError& error)
{
    // The name of a namespace is compared, never resolved: it does not have to be a URI. Declarations need
    // not be valid, for example without duplicates, as long as they are well-formed.
    if (error.level < XML_ERR_ERROR || error.code == XML_WAR_NS_URI || error.domain == XML_FROM_DTD)
        return;
    Place place = Place::Here;
    if (error.domain == XML_FROM_NAMESPACE)
        place = Place::StartTag;
    else if (error.code == XML_ERR_TAG_NAME_MISMATCH)
        place = Place::EndTag;
    fail(error.code, place, TidyReason(error.message == nullptr ? "" : error.message));
}

xmlEntityPtr Pass::countExpansion(xmlEntityPtr entity)
{
    // References take time even if they expand to nothing; those that the text itself contains are limited by
    // its size.
    constexpr qsizetype FreeReferences = 20'000;
    constexpr qsizetype ShortestReference = 3;
    if (entity == nullptr)
        return nullptr;
    expanded += entity->length;
    ++references;
    if (entity->etype == XML_INTERNAL_PARAMETER_ENTITY) {
        countDeclarations(View(entity->content, entity->length));
        if (found)
            return nullptr;
    }
    // Before the parser starts with the elements of the entity: it cannot be stopped there.
    if (mostDefaultWork > 0) {
        const std::string_view content = View(entity->content, entity->length);
        if (!countDefaults(mostDefaultWork * std::count(content.begin(), content.end(), '<')))
            fail(XmlDocTypeTooLarge, Place::Reference, "The document type adds too many attributes");
        if (found)
            return nullptr;
    }
    if (expanded <= XmlMaxEntityExpansion && references <= FreeReferences + offset() / ShortestReference)
        return entity;
    fail(XmlEntityTooLarge, Place::Reference, "The entities of the document type expand to too much text");
    return nullptr;
}

void Pass::reference(const xmlChar* name)
{
    // Called after the content of an internal entity, and without content for one that would have to be read.
    const xmlEntity* entity = xmlSAX2GetEntity(context, name);
    if (entity == nullptr || entity->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY)
        fail(XmlExternalEntity, Place::Reference,
             "Entity '" + std::string(View(name)) + "' is outside the document and is not read");
}

void Pass::startDocument()
{
    xmlSAX2StartDocument(context);
    const xmlParserInput& stream = *context->input;
    const std::string_view start(reinterpret_cast<const char*>(stream.base),
                                 static_cast<size_t>(stream.cur - stream.base));
    // The parser has also skipped the blanks after it.
    if (handler != nullptr && listening() && start.starts_with("<?xml"))
        handler->xmlDeclaration(start.substr(0, start.find("?>") + 2));
    noteMarkupEnd();
}

void Pass::docTypeEnd()
{
    if (handler != nullptr && !found) {
        std::string room;
        const std::string_view before = input.prefix(offset(), room);
        const size_t start = before.rfind("<!DOCTYPE", static_cast<size_t>(markupEnd));
        if (start != std::string_view::npos)
            handler->docType(before.substr(start));
    }
    noteMarkupEnd();
}

void Pass::startElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaceCount,
                        const xmlChar** namespaces, int attributeCount, int defaulted,
                        const xmlChar** attributes)
{
    flushText();
    if (!listening())
        return;
    if (!defaults.empty() && !countDefaultsOf(QName(name, prefix)))
        return;
    if (++depth > XmlMaxDepth) {
        fail(XmlTooDeep, Place::StartTag, "Elements are nested deeper than " + std::to_string(XmlMaxDepth));
        return;
    }
    if (depth == 1 && schemas != nullptr)
        validation = std::make_unique<Validation>(*schemas->find(View(uri)), context->dict);
    if (validation) {
        const auto& problems = validation->startElement(name, prefix, uri, namespaceCount, namespaces,
                                                        attributeCount, defaulted, attributes);
        if (!passes(problems, Place::StartTag))
            return;
    }
    if (handler != nullptr)
        sendStart(name, prefix, namespaceCount, namespaces, attributeCount, attributes);
    noteMarkupEnd();
}

void Pass::endElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri)
{
    flushText();
    if (!listening())
        return;
    --depth;
    if (validation && !passes(validation->endElement(name, prefix, uri), Place::EndTag))
        return;
    if (handler != nullptr)
        handler->endElement(QName(name, prefix));
    noteMarkupEnd();
}

void Pass::sendStart(const xmlChar* name, const xmlChar* prefix, int namespaceCount,
                     const xmlChar** namespaces, int attributeCount, const xmlChar** attributes)
{
    // All names first: views into them need their final addresses.
    const auto count = static_cast<size_t>(namespaceCount) + static_cast<size_t>(attributeCount);
    std::vector<std::string> names;
    names.reserve(count);
    std::vector<std::string> values;
    values.reserve(count);
    std::vector<XmlAttribute> sent;
    sent.reserve(count);
    for (ptrdiff_t i = 0; i < namespaceCount; ++i) {
        const xmlChar** declaration = namespaces + 2 * i; // prefix, URI
        names.push_back(declaration[0] == nullptr ? "xmlns" : "xmlns:" + std::string(View(declaration[0])));
        sent.push_back({names.back(), resolved(declaration[1], View(declaration[1]), values)});
    }
    for (ptrdiff_t i = 0; i < attributeCount; ++i) {
        const xmlChar** attribute = attributes + 5 * i; // name, prefix, URI, value, end of value
        names.push_back(QName(attribute[0], attribute[1]));
        const auto length = static_cast<int>(attribute[4] - attribute[3]);
        sent.push_back({names.back(), resolved(attribute[3], View(attribute[3], length), values)});
    }
    // The parser reports namespaces separately; the tag determines their order among the attributes.
    if (namespaceCount > 0 && attributeCount > 0)
        SortAsWritten(sent, startTagText());
    handler->startElement(QName(name, prefix), sent);
}

/// Returns a value unchanged, or stored in `values` if the parser left references in it ("&#38;" for an
/// ampersand, entities of the document type by name).
std::string_view Pass::resolved(const xmlChar* value, std::string_view view, std::vector<std::string>& values)
{
    if (view.find('&') == std::string_view::npos)
        return view;
    xmlChar* plain = xmlStringLenDecodeEntities(context, value, static_cast<int>(view.size()),
                                                XML_SUBSTITUTE_REF, 0, 0, 0);
    values.emplace_back(View(plain));
    xmlFree(plain);
    return values.back();
}

std::string_view Pass::startTagText() const
{
    if (insideEntity())
        return {};
    const xmlParserInput& stream = *context->input;
    const std::string_view before(reinterpret_cast<const char*>(stream.base),
                                  static_cast<size_t>(stream.cur - stream.base));
    const size_t open = before.rfind('<');
    return open == std::string_view::npos ? std::string_view() : before.substr(open);
}

void Pass::characters(const xmlChar* piece, int length)
{
    if (found || (!validation && handler == nullptr))
        return;
    if (mask)
        text.append(withoutMask(View(piece, length)));
    else
        text.append(View(piece, length));
}

/// Returns the original of a masked text. The parser passes the text of the stream from its own buffer, and
/// copies only text that it changes.
std::string_view Pass::withoutMask(std::string_view piece)
{
    if (piece.find(TextMask::Mask) == std::string_view::npos)
        return piece;
    const xmlParserInput& stream = *context->input;
    const auto* start = reinterpret_cast<const xmlChar*>(piece.data());
    if (context->inputNr == 1 && start >= stream.base && start + piece.size() <= stream.end) {
        const std::string_view original
            = mask->original(static_cast<qsizetype>(stream.consumed) + (start - stream.base), piece.size());
        if (original.size() == piece.size())
            return original;
    }
    fail(XmlNoParser, Place::Here, "The text cannot be read with a mask");
    return {};
}

void Pass::flushText()
{
    if (text.empty())
        return;
    if (listening() && sendToSchema(text) && handler != nullptr)
        handler->characters(text);
    text.clear();
    // The text of a picture is too large to keep its buffer.
    if (text.capacity() > 1'000'000)
        text.shrink_to_fit();
}

bool Pass::sendToSchema(std::string_view piece)
{
    return !validation || passes(validation->characters(piece), Place::Text);
}

void Pass::cdata(std::string_view piece)
{
    flushText();
    if (listening() && sendToSchema(piece) && handler != nullptr)
        handler->cdata(piece);
    noteMarkupEnd();
}

void Pass::comment(std::string_view piece)
{
    if (!listening())
        return;
    flushText();
    if (handler != nullptr && !found)
        handler->comment(piece);
    noteMarkupEnd();
}

void Pass::processingInstruction(std::string_view target, std::string_view data)
{
    if (!listening())
        return;
    flushText();
    if (handler != nullptr && !found)
        handler->processingInstruction(target, data);
    noteMarkupEnd();
}

} // namespace

XmlParseError ReadXml(std::string_view bytes, XmlEncoding encoding, XmlSaxHandler* handler,
                      const XmlSchemaCache* schemas)
{
    // An error needs a pass over the text itself: its reason can quote the text.
    if (handler == nullptr && Pass(bytes, encoding, nullptr, schemas).isValidWithMask())
        return {};
    return Pass(bytes, encoding, handler, schemas).run();
}

std::vector<XmlParseError> ReadAllXmlErrors(std::string_view bytes, XmlEncoding encoding,
                                            const XmlSchemaCache* schemas)
{
    return Pass(bytes, encoding, nullptr, schemas).runToTheEnd();
}

} // namespace vmk
