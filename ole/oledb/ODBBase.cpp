// The home of the interface's virtual table.

#include "ole/oledb/ODBBase.h"

ODBBase::~ODBBase() = default;
