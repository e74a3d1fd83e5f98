// The root of the interfaces: its virtual destructor stands here, so that its type information is
// made once.

#include "tarn/iObject.h"

iObject::~iObject() = default;
