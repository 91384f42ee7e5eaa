#include "files.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Files, folders and programs by the system's own calls. Whatever fails is the fault of one text,
// with the system's message. Tested by dsscan_test.cpp.
namespace dsscan {

namespace {

constexpr int NO_FILE = -1;

[[noreturn]] void fail(int error) {
    throw Text_fault(std::strerror(error));
}

// Without waiting: what was a plain file when its folder was read may have become a pipe, to which
// nobody ever writes.
int open_flags(File_bytes::Kind kind) {
    const int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
    return kind == File_bytes::Kind::plain ? flags | O_NOFOLLOW | O_NONBLOCK : flags;
}

int open_file(const std::string& name, File_bytes::Kind kind) {
    // A file of that name in a folder is a file.
    const bool is_input = name == "-" && kind == File_bytes::Kind::any;
    const int file = is_input ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                              : ::open(name.c_str(), open_flags(kind));
    if (file < 0) fail(errno);
    return file;
}

// Signals that have a handler interrupt a read; it is then done again.
std::size_t read_some(int file, std::span<std::byte> room) {
    for (;;) {
        const ssize_t size = ::read(file, room.data(), room.size());
        if (size >= 0) return static_cast<std::size_t>(size);
        if (errno != EINTR) fail(errno);
    }
}

// Closes what is still open, whatever else fails.
struct Spawn_actions {
    Spawn_actions() { ::posix_spawn_file_actions_init(&actions); }
    ~Spawn_actions() { ::posix_spawn_file_actions_destroy(&actions); }
    Spawn_actions(const Spawn_actions&) = delete;
    Spawn_actions& operator=(const Spawn_actions&) = delete;

    posix_spawn_file_actions_t actions{};
};

// Returns the process; 0 and an error in `error` when there is none.
pid_t spawn(const std::string& command, const std::string& name, int output, int& error) {
    const Spawn_actions file;
    auto* const actions = const_cast<posix_spawn_file_actions_t*>(&file.actions);
    ::posix_spawn_file_actions_addopen(actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(actions, output, STDOUT_FILENO);
    // Copies, as the system's interface takes them without const.
    std::string program = command;
    std::string argument = name;
    const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
    pid_t process = 0;
    error = ::posix_spawnp(&process, command.c_str(), actions, nullptr, arguments.data(), environ);
    return error == 0 ? process : 0;
}

// The status of a process that has ended or soon will.
int wait_for(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) fail(errno);
    }
    return status;
}

struct Name {
    std::string name;
    bool is_folder;
};

struct Close_folder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

// What is in a folder that is to be scanned, the last first, so that it can be taken from the back.
std::vector<Name> names_in(const std::string& folder_name) {
    const std::unique_ptr<DIR, Close_folder> folder(::opendir(folder_name.c_str()));
    if (folder == nullptr) fail(errno);
    std::vector<Name> names;
    for (;;) {
        errno = 0;
        const dirent* const entry = ::readdir(folder.get());
        // The end, or a fault: errno tells which.
        if (entry == nullptr) break;
        const std::string_view name = &entry->d_name[0];
        if (name == "." || name == "..") continue;
        struct stat what {};
        if (::fstatat(::dirfd(folder.get()), &entry->d_name[0], &what, AT_SYMLINK_NOFOLLOW) != 0) {
            continue; // removed since
        }
        const bool is_folder = S_ISDIR(what.st_mode);
        if (is_folder || S_ISREG(what.st_mode)) names.push_back({std::string(name), is_folder});
    }
    if (errno != 0) fail(errno);
    std::ranges::sort(names, std::greater<>(), &Name::name);
    return names;
}

// What cannot be looked at is opened as a file, which gives the message.
bool is_folder(const std::string& name) {
    struct stat what {};
    return name != "-" && ::stat(name.c_str(), &what) == 0 && S_ISDIR(what.st_mode);
}

// Goes through a folder and those in it; a list of its own, as folders may lie deep.
class Folder_walk {
public:
    Folder_walk(const Take_text& take, const Tell_fault& tell) : take_(take), tell_(tell) {}

    // Names are taken from the back of a list, and a folder in it is gone through before the next
    // name.
    bool run(const std::string& folder) {
        enter(folder);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.names.empty()) {
                levels_.pop_back();
                continue;
            }
            const Name next = std::move(level.names.back());
            level.names.pop_back();
            const std::string path = level.path + next.name;
            if (next.is_folder) {
                enter(path);
            } else if (!take_(path, File_bytes::Kind::plain)) {
                return false;
            }
        }
        return true;
    }

private:
    struct Level {
        std::string path; // with a slash at its end
        std::vector<Name> names;
    };

    void enter(const std::string& folder) {
        try {
            levels_.push_back({folder.ends_with('/') ? folder : folder + '/', names_in(folder)});
        } catch (const Text_fault& fault) {
            tell_(folder, fault.what());
        }
    }

    const Take_text& take_;
    const Tell_fault& tell_;
    std::vector<Level> levels_;
};

} // namespace

Descriptor::~Descriptor() {
    if (number_ != NO_FILE) ::close(number_);
}

// The size is for the progress alone: a file may grow or shrink while it is read.
File_bytes::File_bytes(const std::string& name, Kind kind) : file_(open_file(name, kind)) {
    struct stat what {};
    if (::fstat(file_.number(), &what) != 0) fail(errno);
    if (kind == Kind::plain && !S_ISREG(what.st_mode)) {
        throw Text_fault("is no plain file any more");
    }
    if (S_ISREG(what.st_mode)) size_ = static_cast<std::uint64_t>(what.st_size);
}

std::size_t File_bytes::read(std::span<std::byte> room) {
    return read_some(file_.number(), room);
}

Command_bytes::Command_bytes(const std::string& command, const std::string& name)
    : command_(command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail(errno);
    const Descriptor input(ends[1]); // the program has one of its own
    output_ = ends[0];
    std::signal(SIGCHLD, SIG_DFL); // where it was ignored, nobody could learn how the program ended
    int error = 0;
    process_ = spawn(command, name, input.number(), error);
    if (error != 0) {
        ::close(output_);
        throw Text_fault("--pre " + command_ + ": " + std::strerror(error));
    }
}

// A program that is still writing is ended: it would wait for a reader for ever.
Command_bytes::~Command_bytes() {
    if (output_ != NO_FILE) ::close(output_);
    if (process_ <= 0) return;
    ::kill(process_, SIGTERM);
    int ignored = 0;
    while (::waitpid(process_, &ignored, 0) < 0 && errno == EINTR) {
    }
}

std::size_t Command_bytes::read(std::span<std::byte> room) {
    return read_some(output_, room);
}

// The status is asked for at the end of what it wrote: what was found before stays told.
void Command_bytes::finish() {
    const pid_t process = process_;
    process_ = 0;
    const int status = wait_for(process);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
    throw Text_fault("--pre " + command_ +
                     (WIFSIGNALED(status)
                          ? ": was ended by signal " + std::to_string(WTERMSIG(status))
                          : ": ended with status " + std::to_string(WEXITSTATUS(status))));
}

bool each_text(const std::string& name, const Take_text& take, const Tell_fault& tell) {
    if (!is_folder(name)) return take(name, File_bytes::Kind::any);
    return Folder_walk(take, tell).run(name);
}

// On a terminal the line of the progress would stand among the finds.
bool is_terminal(Stream stream) {
    return ::isatty(stream == Stream::output ? STDOUT_FILENO : STDERR_FILENO) == 1;
}

} // namespace dsscan
