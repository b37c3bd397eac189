#include "Formats/PropertyListReaders.h"
#include "tests/proof/fuzz/PropertyListEcho.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

namespace {

/// What a reader tells is a list, and said in XML it is the same list; what is asked of it is found again.
void fuzzReader(std::string_view bytes, bool (*read)(std::string_view, PropertyListHandler&)) {
    std::optional<std::string> version;
    readPropertyListTexts(bytes, {{"CFBundleVersion", version}});
    PropertyListEcho first;
    if (!read(bytes, first)) return;
    const auto written = first.xml();
    if (!written) return;
    PropertyListEcho second;
    promise(readXMLPropertyList(*written, second), "what is written from a list is a list");
    promise(second.xml() == written, "what is written from a list is that list");
}

/// The mistakes: bytes are looked at before it is known that they are there.
bool readUncheckedMark(std::string_view bytes, PropertyListHandler& handler) {
    const bool isMarked = bytes.data()[0] == '\xEF' && bytes.data()[1] == '\xBB' && bytes.data()[2] == '\xBF';
    return readXMLPropertyList(isMarked ? bytes.substr(3) : bytes, handler);
}

bool readUncheckedTrailer(std::string_view bytes, PropertyListHandler& handler) {
    if (!isBinaryPropertyList(bytes)) return false;
    const auto offsetSize = (bytes.data() + bytes.size())[6 - 32];
    return offsetSize > 0 && readBinaryPropertyList(bytes, handler);
}

/// Text goes on for as long as it is bare.
bool readUncheckedEnd(std::string_view bytes, PropertyListHandler& handler) {
    const auto* end = bytes.data();
    while (*end >= '0' && *end <= 'z') ++end;
    return end != bytes.data() && readOldStylePropertyList(bytes, handler);
}

}  // namespace

void fuzzXMLPropertyList(std::string_view bytes, Subject subject) {
    fuzzReader(bytes, subject == Subject::own ? readXMLPropertyList : readUncheckedMark);
}

void fuzzOldStylePropertyList(std::string_view bytes, Subject subject) {
    fuzzReader(bytes, subject == Subject::own ? readOldStylePropertyList : readUncheckedEnd);
}

void fuzzBinaryPropertyList(std::string_view bytes, Subject subject) {
    fuzzReader(bytes, subject == Subject::own ? readBinaryPropertyList : readUncheckedTrailer);
}

}  // namespace orvane::test
