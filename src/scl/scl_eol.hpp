#pragma once

namespace scl {

// What a stream does to line ends. Both modes hand every byte through unchanged: `text` says that
// the reader splits lines itself, `none` that the data has no lines.
enum class Scl_eol : unsigned { text = 0, none = 3 };

} // namespace scl
