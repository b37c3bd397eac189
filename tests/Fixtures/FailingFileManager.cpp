#include "tests/Fixtures/FailingFileManager.h"

#include <utility>

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

std::vector<bool> FailingFileManager::filesExist(std::span<const FileURL* const> urls,
                                                 Together together) const {
    if (fails("filesExist")) return std::vector<bool>(urls.size(), true);
    return real_.filesExist(urls, together);
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

/// Its operations count as calls of the file manager.
class FailingFileManager::Remover final : public EntryRemover {
  public:
    Remover(FailingFileManager& files, std::unique_ptr<EntryRemover> real)
        : files_(files), real_(std::move(real)) {}

    Result<EntryFacts> look(const FileURL& url) override {
        if (files_.fails("look")) return failure(diskError);
        return real_->look(url);
    }
    Result<void> moveToTrash(const std::optional<FileIdentity>& folder) override {
        return files_.change("moveToTrash", [&] { return real_->moveToTrash(folder); });
    }
    Result<void> remove(const std::optional<FileIdentity>& folder, Together together) override {
        return files_.change("remove", [&] { return real_->remove(folder, together); });
    }

  private:
    FailingFileManager& files_;
    std::unique_ptr<EntryRemover> real_;
};

std::unique_ptr<EntryRemover> FailingFileManager::makeEntryRemover() {
    return std::make_unique<Remover>(*this, real_.makeEntryRemover());
}

}  // namespace orvane::test
