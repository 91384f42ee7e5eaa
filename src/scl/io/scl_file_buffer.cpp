#include "scl/io/scl_file_buffer.hpp"

#include "scl/text/scl_string.hpp"

#include <algorithm>
#include <cerrno>

namespace scl {

namespace {

// Another run in the same folder may create its scratch file between our removal and our creation,
// so both are tried again. Each try loses to one other run at most; after 100 something else is
// wrong, such as a program that keeps creating the name, and the run should fail instead of hang.
constexpr int SCRATCH_ATTEMPTS = 100;

// An existing output, and a folder named in place of a file, have codes of their own, since their
// messages say what to do. For anything else the system's reason says enough.
Scl_status_code open_failure_code(Scl_file_open mode, int error) {
    if (mode == Scl_file_open::existing) {
        const bool irregular = error == EISDIR || error == EINVAL;
        return irregular ? SCL_STATUS_NOT_REGULAR : SCL_STATUS_OPEN_FAILED;
    }
    return error == EEXIST ? SCL_STATUS_EXISTS : SCL_STATUS_CREATE_FAILED;
}

} // namespace

Scl_file_buffer::Scl_file_buffer(std::u16string_view path, Scl_file_open mode,
                                 Scl_file_access access, unsigned flags, unsigned pattern,
                                 Scl_status& status) {
    open(path, mode, access, flags, pattern, status);
}

Scl_file_buffer::~Scl_file_buffer() {
    discard(); // who needs to know closes before
}

void Scl_file_buffer::open(std::u16string_view path, Scl_file_open mode, Scl_file_access access,
                           unsigned flags, unsigned pattern, Scl_status& status) {
    close(status);
    if (status.has_failed()) return; // the other file's failure must stay on top
    scl_wtos(path, name_, true);
    const bool creates = mode == Scl_file_open::create;
    writable_ = creates && access == Scl_file_access::read_write;
    scratch_ = creates && (flags & SCL_FILE_SCRATCH) != 0;
    const int error = !creates   ? file_.open_existing(name_)
                      : scratch_ ? create_scratch()
                                 : file_.create_new(name_);
    if (error != 0) {
        report(open_failure_code(mode, error), scl_system_reason(error), status);
        return;
    }
    size_ = file_.opened_size();
    reserved_end_ = 0;
    can_reserve_ = true;
    file_.advise(pattern == SCL_FILE_AT_RANDOM);
}

// Removes and creates, never truncates: the name may be a link to a file that matters, or another
// run may still use the file.
int Scl_file_buffer::create_scratch() {
    int error = 0;
    for (int attempt = 0; attempt < SCRATCH_ATTEMPTS; ++attempt) {
        error = scl_remove_file(name_);
        if (error != 0 && error != ENOENT) return error;
        error = file_.create_new(name_);
        if (error != EEXIST) return error;
    }
    return error;
}

// Network file systems report here what they could not write.
void Scl_file_buffer::close(Scl_status& status) {
    const int error = end();
    if (error != 0) report(SCL_STATUS_CLOSE_FAILED, scl_system_reason(error), status);
}

void Scl_file_buffer::discard() noexcept {
    (void)end();
}

// Returns the system's number for a failure. Telling of it takes memory, which may be what ran out.
int Scl_file_buffer::end() noexcept {
    if (!file_.is_open()) return 0;
    if (scratch_) remove_scratch(); // while it is open: afterwards its node number may be reused
    (void)release_reserve();
    size_ = 0;
    return file_.close();
}

// Only our own: by now the entry may be another run's scratch file.
void Scl_file_buffer::remove_scratch() const {
    Scl_file_identity found;
    if (scl_identify_file(name_, false, found) != 0 || !(found == file_.identity())) return;
    // A failure does no harm: the next run replaces the file.
    (void)scl_remove_file(name_);
}

std::uint64_t Scl_file_buffer::size(bool in_units, Scl_status& /*status*/) const {
    return in_units ? size_ / 2 : size_;
}

std::size_t Scl_file_buffer::read_at(std::uint64_t offset, std::span<std::byte> bytes,
                                     Scl_status& status) const {
    if (!is_open() || offset > size_) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return 0;
    }
    std::size_t done = 0;
    // Never beyond the known size: a read that comes back short then means a shortened file.
    const std::size_t wanted = std::min<std::uint64_t>(bytes.size(), size_ - offset);
    const int error = file_.read_at(offset, bytes.first(wanted), done);
    if (error != 0) {
        report(SCL_STATUS_READ_FAILED, scl_system_reason(error), status);
    } else if (done < wanted) {
        // Reported as the end of the data, half a file would pass for a whole one.
        report(SCL_STATUS_READ_FAILED, "the file became shorter", status);
    }
    return done;
}

void Scl_file_buffer::write_at(std::uint64_t offset, std::span<const std::byte> bytes,
                               Scl_status& status) {
    // A gap would be filled with zeros by the system, and they would pass for data.
    if (!is_open() || !writable_ || offset > size_) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return;
    }
    reserve_up_to(offset + bytes.size());
    int error = file_.write_at(offset, bytes);
    // Where the disk is full, the reserved room may be just what is missing.
    if (error != 0 && release_reserve()) error = file_.write_at(offset, bytes);
    // The size stays: part of the bytes may be written, but nobody should read them.
    if (error != 0) {
        report(SCL_STATUS_WRITE_FAILED, scl_system_reason(error), status);
        return;
    }
    size_ = std::max<std::uint64_t>(size_, offset + bytes.size());
}

void Scl_file_buffer::truncate(std::uint64_t size, Scl_status& status) {
    if (!is_open() || !writable_ || size > size_) {
        status.push(SCL_STATUS_OUT_OF_BOUNDS);
        return;
    }
    if (size == size_ && reserved_end_ <= size_) return;
    const int error = file_.truncate(size);
    if (error != 0) return report(SCL_STATUS_WRITE_FAILED, scl_system_reason(error), status);
    size_ = size;
    reserved_end_ = 0;
}

// A refusal is final: a full disk must not be asked again with each write.
void Scl_file_buffer::reserve_up_to(std::uint64_t end) {
    if (end < RESERVE_STEP || end <= reserved_end_ || !can_reserve_) return;
    can_reserve_ = file_.reserve(size_, end - size_ + RESERVE_STEP);
    if (can_reserve_) reserved_end_ = end + RESERVE_STEP;
}

// Gives back what lies behind the file's end. False when there was nothing to give back.
bool Scl_file_buffer::release_reserve() {
    if (reserved_end_ <= size_) return false;
    reserved_end_ = 0;
    can_reserve_ = false;
    return file_.truncate(size_) == 0;
}

void Scl_file_buffer::report(Scl_status_code code, const std::string& reason,
                             Scl_status& status) const {
    status.push(code, Scl_wstring_status_arg(name_ + ": " + reason));
}

} // namespace scl
