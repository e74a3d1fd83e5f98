#pragma once

#include "ole/oledb/ODBView.h"

/// Holds a count on a view while it works and its listeners may drop their handles. A view that
/// lost its last holder meanwhile is deleted at the end; one that nobody counted stays, also where
/// a listener put it into a handle for a while and dropped that.
class ODBViewRep::KeepAlive {
public:
    explicit KeepAlive(ODBViewRep& view) noexcept : view_{view}, counted_{view.refs != 0} {
        ++view_.refs;
    }
    KeepAlive(const KeepAlive&) = delete;
    KeepAlive& operator=(const KeepAlive&) = delete;
    ~KeepAlive() {
        if (--view_.refs == 0 && counted_) {
            delete &view_;
        }
    }

private:
    ODBViewRep& view_;
    bool counted_;
};
