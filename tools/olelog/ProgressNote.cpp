// Progress of the module's own work, which tells the watchdog when it takes long.

#include "ProgressNote.h"

#include "messages.h"
#include "misc/SystemWatchdog.h"

#include <utility>

ProgressNote::ProgressNote(std::string doing) {
    SystemWatchdog::setObserver([doing = std::move(doing)](int depth) {
        if (depth > 0) {
            showProgress(doing);
        } else {
            clearProgress();
        }
    });
}

ProgressNote::~ProgressNote() {
    SystemWatchdog::setObserver({});
    clearProgress();
}
