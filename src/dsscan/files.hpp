#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace dsscan {

// What is wrong with one text; others can be scanned all the same. Does not begin with its name.
class Text_fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A file descriptor, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

// The bytes of a text, read once from front to back. All functions throw Text_fault.
class Text_bytes {
public:
    Text_bytes(const Text_bytes&) = delete;
    Text_bytes& operator=(const Text_bytes&) = delete;
    virtual ~Text_bytes() = default;

    // Fills the room, or a part of it, and returns how many bytes there were; 0 at the end.
    [[nodiscard]] virtual std::size_t read(std::span<std::byte> room) = 0;
    // To be called when the end was read: tells what the end alone does not show.
    virtual void finish() {}
    // How many bytes there are; 0 when that is not known.
    [[nodiscard]] virtual std::uint64_t size() const { return 0; }

protected:
    Text_bytes() = default;
};

// A file of any kind, or a plain file that is no link, as it was found in a folder.
class File_bytes final : public Text_bytes {
public:
    enum class Kind { any, plain };

    // "-" is standard input, unless it was found in a folder.
    File_bytes(const std::string& name, Kind kind);

    [[nodiscard]] std::size_t read(std::span<std::byte> room) override;
    [[nodiscard]] std::uint64_t size() const override { return size_; }

private:
    Descriptor file_;
    std::uint64_t size_ = 0;
};

// What a program writes to its standard output when it is called with a file's name. It is looked
// for as the shell does, and run without one; its standard input is empty.
class Command_bytes final : public Text_bytes {
public:
    Command_bytes(const std::string& command, const std::string& name);
    // Ends the program when its end was not read.
    ~Command_bytes() override;

    [[nodiscard]] std::size_t read(std::span<std::byte> room) override;
    // A fault unless the program ended with status 0.
    void finish() override;

private:
    std::string command_;
    int output_ = -1;
    pid_t process_ = -1;
};

// Calls `take` for the text of that name or, when it is a folder, for each plain file in it and
// below, each folder's names in the order of their bytes; links in folders are passed over. Where a
// folder cannot be read, `tell` is told its name and why. `take` returns false to end it all; false
// then.
using Take_text = std::function<bool(const std::string& name, File_bytes::Kind kind)>;
using Tell_fault = std::function<void(const std::string& name, std::string_view fault)>;
bool each_text(const std::string& name, const Take_text& take, const Tell_fault& tell);

// Whether people see what is written there.
enum class Stream { output, errors };
[[nodiscard]] bool is_terminal(Stream stream);

} // namespace dsscan
