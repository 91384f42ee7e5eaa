#include "records/field_token_writer.hpp"
