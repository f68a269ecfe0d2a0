#include "XmlDocument.h"

#include "XmlSaxReader.h"

namespace vmk {

bool XmlDocument::loadXML(std::string_view bytes, XmlEncoding encoding, XmlSaxHandler* handler)
{
    error = ReadXml(bytes, encoding, handler, validateOnParse ? schemas.get() : nullptr);
    return !error;
}

bool XmlDocument::loadXML(QStringView text, XmlSaxHandler* handler)
{
    const QByteArray utf8 = text.toUtf8();
    return loadXML(std::string_view(utf8.constData(), static_cast<size_t>(utf8.size())), XmlEncoding::utf8(),
                   handler);
}

bool HasParseError(std::string_view text, XmlEncoding encoding)
{
    return bool(ReadXml(text, encoding));
}

} // namespace vmk
