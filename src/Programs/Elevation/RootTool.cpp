#include "Programs/Elevation/RootTool.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <ostream>
#include <utility>

#include "Platform/Linux/TrashFolder.h"
#include "Platform/Posix/DirectoryStack.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/TreeRemoval.h"

namespace orvane {

namespace {

constexpr int done = 0;
constexpr int misuse = 2;

/// One tree that is given away.
class Giving {
  public:
    Giving(uid_t owner, gid_t group) : owner_(owner), group_(group) {}

    void run(int folder, const char* name);
    std::error_code firstError() const { return firstError_; }

  private:
    void giveOpened(int file);
    void give(int folder, const char* name);
    void enter(int folder, const std::string& name);
    void note(std::error_code error) {
        if (!firstError_) firstError_ = error;
    }

    uid_t owner_;
    gid_t group_;
    DirectoryStack stack_;
    std::error_code firstError_;
};

void Giving::giveOpened(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return note(currentError());
    if (!S_ISDIR(status.st_mode) && status.st_nlink > 1) {
        return note(std::make_error_code(std::errc::too_many_links));
    }
    if (::fchownat(file, "", owner_, group_, AT_EMPTY_PATH) != 0) note(currentError());
}

void Giving::give(int folder, const char* name) {
    const auto file = openOnSameMount(folder, name, O_PATH);
    if (file) {
        giveOpened(file.get());
    } else if (errno != ENOENT) {
        note(currentError());
    }
}

void Giving::enter(int folder, const std::string& name) {
    const auto error = stack_.enter(
        name, [&] { return openOnSameMount(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK); });
    if (!error || error.value() == ENOENT) return;
    // It may have become something else.
    if (error.value() == ENOTDIR || error.value() == ELOOP) return give(folder, name.c_str());
    note(error);
}

void Giving::run(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return note(currentError());
    if (!S_ISDIR(status.st_mode)) return give(folder, name);
    enter(folder, name);
    while (!stack_.isEmpty()) {
        if (const auto entry = stack_.next()) {
            if (entry->type == EntryType::folder) {
                enter(stack_.folder(), std::string(entry->name));
            } else {
                give(stack_.folder(), entry->name.data());
            }
            continue;
        }
        if (stack_.error()) note(stack_.error());
        const auto left = stack_.leave();
        // A folder that is no longer where it was: nothing above it is ours to go on with.
        if (!left) return note(left.error());
        giveOpened(left->get());
    }
}

std::string inWords(const std::error_code& error) {
    struct Wording {
        int error;
        const char* words;
    };
    constexpr std::array wordings{
        Wording{EXDEV, "It lies on another disk than the Trash, or another disk is mounted in it."},
        Wording{EBUSY, "A disk is mounted on it or in it."},
        Wording{ESTALE, "It was moved while it was being removed."},
        Wording{EEXIST, "Something of its name has come to its place in the Trash."},
        Wording{EINVAL, "It is in the Trash already, or holds it."},
        Wording{EMLINK, "A file of it has a second name elsewhere and still belongs to whom it did."},
        Wording{ENOTEMPTY, "Something was put into it while it was being removed."},
    };
    for (const auto& wording : wordings) {
        if (error.value() == wording.error) return wording.words;
    }
    return error.message() + ".";
}

std::error_code errorOf(const Result<void>& result) {
    return result ? std::error_code() : result.error();
}

std::string nameOf(const PrivilegedRequest::Item& item) {
    return item.source.substr(item.source.rfind('/') + 1);
}

std::optional<FileIdentity> entryIdentity(int folder, const std::string& name) {
    const auto status = statusOf(folder, name.c_str());
    return status ? std::optional(identityOf(*status)) : std::nullopt;
}

/// What has been moved, by the item's number. Left in memory that outlives this process.
class Moved {
  public:
    explicit Moved(FileDescriptor memory) : memory_(std::move(memory)) {}

    void set(std::size_t number, const FileIdentity& identity) const {
        static_cast<void>(::pwrite(memory_.get(), &identity, sizeof identity, offset(number)) > 0);
    }
    FileIdentity get(std::size_t number) const {
        FileIdentity identity;
        const auto count = ::pread(memory_.get(), &identity, sizeof identity, offset(number));
        return count == sizeof identity ? identity : FileIdentity{};
    }

  private:
    static off_t offset(std::size_t number) {
        return static_cast<off_t>((number - 1) * sizeof(FileIdentity));
    }

    FileDescriptor memory_;
};

/// Why the step failed; empty when it did not.
std::string move(const RootScope& scope, const OrderedItem& ordered, const FileDescriptor& folder,
                 const Moved& moved) {
    const auto source = nameOf(ordered.item);
    const auto name = nameInTrash(scope.home.path, ordered.item.destination);
    // Before the move: where the process ends in between, nothing is given away.
    if (const auto identity = entryIdentity(folder.get(), source)) moved.set(ordered.number, *identity);
    const auto error = errorOf(moveIntoTrash(folder.get(), source.c_str(), scope.trash.get(), name.c_str()));
    if (!error) return {};
    moved.set(ordered.number, {});
    return error.value() == ENOENT ? std::string() : inWords(error);
}

std::string remove(const OrderedItem& ordered, const FileDescriptor& folder) {
    constexpr std::size_t helpers = 3;
    const auto error = removeTree(folder.get(), nameOf(ordered.item).c_str(),
                                  [](FunctionRef<void()> work) { withHelpers(helpers, work); });
    // What is gone is as it should be.
    return error && error.value() != ENOENT ? inWords(error) : std::string();
}

/// Gives what has been moved to that place. Two items can have been meant for it: one has come there.
std::pair<std::size_t, std::string> own(const RootScope& scope, std::string_view order,
                                        const std::string& destination, const Moved& moved) {
    const auto name = nameInTrash(scope.home.path, destination);
    const auto there = name.empty() ? std::nullopt : entryIdentity(scope.trash.get(), name);
    if (!there) return {};
    const auto ordered = itemOfOrder(order, [&](const OrderedItem& each) {
        return each.item.destination == destination && moved.get(each.number) == *there;
    });
    if (!ordered) return {};
    const auto error = giveTree(scope.trash.get(), name.c_str(), scope.home.owner, scope.home.group);
    if (!error || error.value() == ENOENT) return {};
    return {ordered->number, inWords(error)};
}

/// The words of the command text: which tool, and which of the arguments after it is the item's path.
enum class Tool { unload, move, own, remove };

struct Call {
    Tool tool;
    std::string source;
    std::string destination;
};

std::optional<Call> callIn(const std::vector<std::string>& arguments) {
    const auto is = [&](std::size_t count, std::initializer_list<const char*> words) {
        if (arguments.size() != count) return false;
        std::size_t i = 0;
        for (const auto* const word : words) {
            if (arguments[i++] != word) return false;
        }
        return true;
    };
    if (is(4, {"unload", "bootout", "system"})) return Call{Tool::unload, arguments[3], {}};
    if (is(4, {"move", "--"})) return Call{Tool::move, arguments[2], arguments[3]};
    if (is(4, {"own", "-R"})) return Call{Tool::own, {}, arguments[3]};
    if (is(4, {"remove", "-rf", "--"})) return Call{Tool::remove, arguments[3], {}};
    return std::nullopt;
}

/// Whether the order's mode has a use for that tool.
bool belongsTo(Tool tool, RemovalMode mode) {
    return tool == Tool::remove ? mode == RemovalMode::permanent : mode == RemovalMode::trash;
}

/// The number of the item and why the step failed; an empty reason when it did not.
std::pair<std::size_t, std::string> perform(const Call& call, const RootScope& scope, std::string_view order,
                                            const Moved& moved) {
    if (call.tool == Tool::own) return own(scope, order, call.destination, moved);
    const auto ordered = itemOfOrder(order, [&](const OrderedItem& each) {
        return each.item.source == call.source && each.item.destination == call.destination;
    });
    if (!ordered) return {0, "the order does not hold that"};
    auto folder = openFolderOfPlannedItem(scope.home, ordered->item);
    if (!folder) return {ordered->number, folder.error()};
    return {ordered->number,
            call.tool == Tool::move ? move(scope, *ordered, *folder, moved) : remove(*ordered, *folder)};
}

}  // namespace

std::error_code giveTree(int folder, const char* name, uid_t owner, gid_t group) {
    Giving giving(owner, group);
    giving.run(folder, name);
    return giving.firstError();
}

int runStep(const std::vector<std::string>& arguments, StepDescriptors descriptors, std::string_view order,
            std::ostream& err) {
    const auto call = callIn(arguments);
    const auto header = headerOfOrder(order);
    // There are no daemons to unload here.
    if (call && call->tool == Tool::unload) return done;
    if (!call || !header || !belongsTo(call->tool, header->request.mode)) {
        err << "orvane-root-tool: this is run by orvane-remove-as-root\n";
        return misuse;
    }
    const auto scope = openScope(std::move(descriptors.root), header->home, header->request.mode);
    const auto [number, reason] = scope ? perform(*call, *scope, order, Moved(std::move(descriptors.moved)))
                                        : std::pair(std::size_t{0}, scope.error());
    if (!reason.empty()) err << number << ": " << reason << '\n';
    return done;
}

}  // namespace orvane
