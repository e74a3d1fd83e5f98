#pragma once

#include "tarn/Counted.h"
#include "tarn/export.h"

/// Root of the editor's interfaces: a counted object, made once however often it is inherited.
class TARN_API iObject : public virtual Tarn::Counted {
public:
    ~iObject() override;
};
