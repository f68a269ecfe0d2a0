#include "OpenSession.h"

#include "BookOnDisk.h"
#include "BookVariables.h"

namespace vmk {

void TakeFacts(const JournalBase& session)
{
    const BookFacts& facts = session.facts;
    BinaryPart = *session.binary;
    BinaryCodePage = facts.binaryCodePage;
    WorkCodePage = facts.workCodePage;
    FileCodePage = facts.fileCodePage;
    BookKeepsText = facts.keepsText;
    BookHasCharRefs = facts.hasCharRefs;
    WorkEncodingName = facts.workEncodingName;
    WorkMetaTag = facts.workMetaTag;
    FileEncodingName = facts.fileEncodingName;
    FileMetaTag = facts.fileMetaTag;
    XmlDeclaration = facts.xmlDeclaration;
    BadBinaryPart = false;
    OpenBookOnDisk = {facts.path, facts.onDisk, facts.checksum, false};
}

} // namespace vmk
