#include "Formats/CatalogCoding.h"
#include "Text/UTF8.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

/// What is read can be written, and what is written is read as the same. The mistake: sizes pass through a
/// double.
void fuzzCatalog(std::string_view bytes, Subject subject) {
    const auto records = decodeCatalog(bytes);
    if (!records) return;
    for (const auto& record : *records) {
        promise(isValidUTF8(record.name) && isValidUTF8(record.version) &&
                    isValidUTF8(record.bundleIdentifier.value_or("")),
                "the texts of a record are valid UTF-8");
        promise(!record.url.absoluteString().empty(), "a record has a URL");
    }
    const auto written = encodeCatalog(*records);
    promise(written.has_value(), "what was read can be written");
    auto again = decodeCatalog(*written);
    promise(again.has_value(), "what was written can be read");
    if (subject == Subject::wrong) {
        for (auto& record : *again) record.size = static_cast<std::int64_t>(static_cast<float>(record.size));
    }
    promise(again == records, "what was written is read as it was");
    promise(encodeCatalog(*again) == written, "and is written as it was");
}

}  // namespace orvane::test
