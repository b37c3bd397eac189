#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Platform/FileManager.h"

namespace orvane::test {

/// The file manager that it is given, until the call that a test names: that one fails. So everything that
/// somebody asks of the disk can go wrong, one call after the other. Thread-safe, as file managers are.
class FailingFileManager final : public FileManager {
  public:
    /// What a call that changes the disk has done when it fails: nothing, or all that was asked.
    enum class Fault { before, after };

    explicit FailingFileManager(FileManager& real) : real_(real) {}

    /// Fails the call of that number, as a disk does that cannot be read or written; the first is 0. What is
    /// there cannot be told then, so it counts as there and not as deletable.
    void failCall(std::size_t number, Fault fault);

    /// The names of the calls that there were.
    std::vector<std::string> calls() const;
    /// Whether the call has come that was to fail.
    bool hasFailed() const { return calls().size() > number_; }

    FileURL homeDirectoryForCurrentUser() const override { return real_.homeDirectoryForCurrentUser(); }
    FileURL applicationSupportDirectory() const override { return real_.applicationSupportDirectory(); }
    bool fileExists(const FileURL& url) const override;
    std::vector<bool> filesExist(std::span<const FileURL* const> urls, Together together) const override;
    bool entryExists(const FileURL& url) const override;
    bool isDeletableFile(const FileURL& url) const override;
    Result<ResourceValues> resourceValues(const FileURL& url) const override;
    Result<FileIdentity> identity(const FileURL& url) const override;
    Result<std::vector<DirectoryEntry>> contentsOfDirectory(const FileURL& url,
                                                            ListingOptions options) const override;
    std::vector<AllocatedSizes> allocatedSizes(const std::vector<FileURL>& folders, WalkOptions options,
                                               Together together) const override;
    Result<std::string> contents(const FileURL& url, std::size_t limit) const override;
    Result<void> createDirectory(const FileURL& url) override;
    Result<void> writeAtomically(std::string_view bytes, const FileURL& url) override;
    std::unique_ptr<EntryRemover> makeEntryRemover() override;

  private:
    class Remover;

    /// Counts a call; whether it is the one that fails.
    bool fails(const char* name) const;
    template <typename Call>
    Result<void> change(const char* name, Call call);

    FileManager& real_;
    std::size_t number_ = std::numeric_limits<std::size_t>::max();
    Fault fault_ = Fault::before;
    mutable std::mutex mutex_;
    mutable std::vector<std::string> calls_;
};

}  // namespace orvane::test
