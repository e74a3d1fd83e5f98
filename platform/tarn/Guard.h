#pragma once

#include "tarn/Counted.h"
#include "tarn/export.h"

namespace Tarn {

/// One registration with a notifier: the listener is called while the guard lives. A guard may
/// outlive its notifier; dropping it then does nothing.
class TARN_API Guard : public Counted {
public:
    ~Guard() override;
};

} // namespace Tarn
