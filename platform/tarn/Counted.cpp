// The counted base: its virtual destructor stands here, so that its type information is made once.

#include "tarn/Counted.h"

namespace Tarn {

Counted::~Counted() = default;

} // namespace Tarn
