// The face of a registration. What dropping it does is the notifier's own affair (Notifier.cpp).

#include "tarn/Guard.h"

namespace Tarn {

Guard::~Guard() = default;

} // namespace Tarn
