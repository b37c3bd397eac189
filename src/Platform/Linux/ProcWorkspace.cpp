#include "Platform/Linux/ProcWorkspace.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "Models/ApplicationBundle.h"
#include "Platform/Linux/FileViewer.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/Process.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

constexpr std::string_view processFolder = "/proc";

/// Ascending.
std::vector<pid_t> processIdentifiers() {
    std::vector<pid_t> identifiers;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(processFolder, error), end; !error && entry != end;
         entry.increment(error)) {
        const auto name = entry->path().filename().string();
        pid_t identifier = 0;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), identifier);
        if (parsed.ec == std::errc() && parsed.ptr == name.data() + name.size()) {
            identifiers.push_back(identifier);
        }
    }
    std::sort(identifiers.begin(), identifiers.end());
    return identifiers;
}

bool isSameFile(const std::string& a, const std::string& b) {
    struct stat first {};
    struct stat second {};
    return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 &&
           identityOf(first) == identityOf(second);
}

/// This machine's path of a process's executable, as it was when that was last there. Absent for a process
/// that has none, has ended, or may not be looked into.
std::optional<std::string> executablePath(pid_t process) {
    constexpr std::string_view deleted = " (deleted)";
    const auto link = std::string(processFolder) + "/" + std::to_string(process) + "/exe";
    std::error_code error;
    auto path = std::filesystem::read_symlink(link, error).string();
    if (error || !path.starts_with('/')) return std::nullopt;
    // The kernel's remark, unless that is how the file is called.
    if (path.ends_with(deleted) && !isSameFile(path, link)) path.resize(path.size() - deleted.size());
    return path;
}

/// The innermost application bundle that a file lies in.
std::optional<std::string_view> enclosingBundle(std::string_view file) {
    for (auto slash = file.rfind('/'); slash != std::string_view::npos; slash = file.rfind('/')) {
        file = file.substr(0, slash);
        if (isApplicationBundleName(file.substr(file.rfind('/') + 1))) return file;
    }
    return std::nullopt;
}

/// What a process has of the bundle it runs from.
struct ApplicationFacts {
    std::string name;
    std::optional<std::string> bundleIdentifier;
};

ApplicationFacts factsOf(const BundleLoader& loader, std::string_view bundlePath) {
    const auto url = FileURL::fromPath(bundlePath, true);
    const auto bundle = loader.bundle(url).value_or(Bundle());
    return {bundle.nameOrFileName(url), bundle.identifier};
}

class ProcWorkspace final : public Workspace {
  public:
    ProcWorkspace(std::shared_ptr<const Volume> volume, const BundleLoader& bundleLoader)
        : volume_(std::move(volume)), bundleLoader_(bundleLoader) {}

    std::vector<RunningApplication> runningApplications() const override {
        // An application's many helpers run from few bundles.
        std::map<std::string, ApplicationFacts, std::less<>> known;
        std::vector<RunningApplication> applications;
        for (const auto process : processIdentifiers()) {
            const auto executable = volumeExecutablePath(process);
            if (!executable) continue;
            const auto bundle = enclosingBundle(*executable);
            if (!bundle) continue;
            auto facts = known.find(*bundle);
            if (facts == known.end()) {
                facts = known.emplace(*bundle, factsOf(bundleLoader_, *bundle)).first;
            }
            applications.push_back({process, facts->second.name, FileURL::fromPath(*executable, false),
                                    facts->second.bundleIdentifier});
        }
        return applications;
    }

    void terminate(const RunningService& service) override {
        constexpr pid_t firstProcess = 1;
        const pid_t process = service.processIdentifier;
        if (process <= firstProcess || service.executablePath.empty()) return;
        // Looked at after it is held: whoever has this id by now, only the process held is signalled.
        const auto held = openProcess(process);
        if (!held || volumeExecutablePath(process) != service.executablePath) return;
        ::syscall(SYS_pidfd_send_signal, held.get(), SIGTERM, nullptr, 0);
    }

    void activateFileViewerSelecting(const FileURL& url) override {
        const auto path = url.fileSystemPath();
        if (!path) return;
        if (const auto machinePath = volume_->machinePath(*path)) showInFileViewer(*machinePath);
    }

  private:
    std::optional<std::string> volumeExecutablePath(pid_t process) const {
        const auto path = executablePath(process);
        return path ? volume_->volumePath(*path) : std::nullopt;
    }

    const std::shared_ptr<const Volume> volume_;
    const BundleLoader& bundleLoader_;
};

}  // namespace

std::unique_ptr<Workspace> makeWorkspace(std::shared_ptr<const Volume> volume,
                                         const BundleLoader& bundleLoader) {
    return std::make_unique<ProcWorkspace>(std::move(volume), bundleLoader);
}

}  // namespace orvane
