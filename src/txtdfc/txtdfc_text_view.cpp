#include "txtdfc/txtdfc_text_view.hpp"

namespace txtdfc {

Txtdfc_text_view::~Txtdfc_text_view() = default;

} // namespace txtdfc
