#include "tests/Fixtures/FailingFileManager.h"

namespace orvane::test {

namespace {

constexpr auto diskError = std::errc::io_error;

}  // namespace

void FailingFileManager::failCall(std::size_t number, Fault fault) {
    number_ = number;
    fault_ = fault;
}

std::vector<std::string> FailingFileManager::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

bool FailingFileManager::fails(const char* name) const {
    const std::lock_guard lock(mutex_);
    calls_.emplace_back(name);
    return calls_.size() - 1 == number_;
}

template <typename Call>
Result<void> FailingFileManager::change(const char* name, Call call) {
    const bool isToFail = fails(name);
    if (isToFail && fault_ == Fault::before) return failure(diskError);
    auto result = call();
    if (isToFail) return failure(diskError);
    return result;
}

bool FailingFileManager::fileExists(const FileURL& url) const {
    return fails("fileExists") || real_.fileExists(url);
}

bool FailingFileManager::entryExists(const FileURL& url) const {
    return fails("entryExists") || real_.entryExists(url);
}

bool FailingFileManager::isDeletableFile(const FileURL& url) const {
    return !fails("isDeletableFile") && real_.isDeletableFile(url);
}

Result<ResourceValues> FailingFileManager::resourceValues(const FileURL& url) const {
    if (fails("resourceValues")) return failure(diskError);
    return real_.resourceValues(url);
}

Result<FileIdentity> FailingFileManager::identity(const FileURL& url) const {
    if (fails("identity")) return failure(diskError);
    return real_.identity(url);
}

Result<std::vector<DirectoryEntry>> FailingFileManager::contentsOfDirectory(const FileURL& url,
                                                                            ListingOptions options) const {
    if (fails("contentsOfDirectory")) return failure(diskError);
    return real_.contentsOfDirectory(url, options);
}

std::vector<AllocatedSizes> FailingFileManager::allocatedSizes(const std::vector<FileURL>& folders,
                                                               WalkOptions options, Together together) const {
    if (fails("allocatedSizes")) return std::vector<AllocatedSizes>(folders.size());
    return real_.allocatedSizes(folders, options, together);
}

Result<std::string> FailingFileManager::contents(const FileURL& url, std::size_t limit) const {
    if (fails("contents")) return failure(diskError);
    return real_.contents(url, limit);
}

Result<void> FailingFileManager::createDirectory(const FileURL& url) {
    return change("createDirectory", [&] { return real_.createDirectory(url); });
}

Result<void> FailingFileManager::writeAtomically(std::string_view bytes, const FileURL& url) {
    return change("writeAtomically", [&] { return real_.writeAtomically(bytes, url); });
}

Result<void> FailingFileManager::trashItem(const FileURL& url, const std::optional<FileIdentity>& folder) {
    return change("trashItem", [&] { return real_.trashItem(url, folder); });
}

Result<void> FailingFileManager::removeItem(const FileURL& url, const std::optional<FileIdentity>& folder,
                                            Together together) {
    return change("removeItem", [&] { return real_.removeItem(url, folder, together); });
}

}  // namespace orvane::test
