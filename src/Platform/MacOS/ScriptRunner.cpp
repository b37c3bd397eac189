#include "Platform/MacOS/ScriptRunner.h"

#include <utility>

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/Process.h"
#include "Platform/PrivilegedScript.h"

namespace orvane {

namespace {

class ScriptRunner final : public PrivilegedRunner {
  public:
    ScriptRunner(std::shared_ptr<const Volume> volume, std::string program)
        : volume_(std::move(volume)), program_(std::move(program)) {}

    PrivilegedOutcome run(const PrivilegedRequest& request) override {
        PrivilegedOutcome outcome;
        PrivilegedRequest remaining{request.mode, {}};
        for (const auto& item : request.items) {
            const bool isInItsFolder = !item.folder || isIn(*item.folder, item.source);
            outcome.reasons.emplace_back(
                isInItsFolder ? "" : "The folder that it lies in is no longer the one that was shown.");
            if (isInItsFolder) remaining.items.push_back(item);
        }
        if (remaining.items.empty()) return outcome;
        auto command = scriptArguments(remaining);
        command.insert(command.begin(), program_);
        auto end = runToEnd(command);
        if (!end) {
            outcome.launchError = end.error().message();
            return outcome;
        }
        outcome.terminationStatus = end->status;
        outcome.standardError = std::move(end->standardError);
        return outcome;
    }

  private:
    bool isIn(const FileIdentity& folder, const std::string& path) const {
        const auto entry = volume_->entry(path);
        return entry && identityOf(entry->folder.get()) == folder;
    }

    const std::shared_ptr<const Volume> volume_;
    const std::string program_;
};

}  // namespace

std::unique_ptr<PrivilegedRunner> makeScriptRunner(std::shared_ptr<const Volume> volume,
                                                   std::string program) {
    return std::make_unique<ScriptRunner>(std::move(volume), std::move(program));
}

}  // namespace orvane
