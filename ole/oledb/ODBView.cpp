// Views: life, table and base view, the index, and what a view does when rows are deleted below it;
// the handle.
//
// A view that has listeners follows a deletion step by step, for they may look at it between the
// steps (`Following`). Where there are none the index does it in one pass, when somebody looks.

#include "ole/oledb/ODBView.h"

#include "misc/diagnostics.h"
#include "ole/fieldspec/SExpr.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/GrowString.h"
#include "tarn/MethodCallback.h"
#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTokenIterator.h"

#include <algorithm>
#include <climits>
#include <exception>
#include <span>
#include <string>
#include <utility>

namespace {

void copyParams(AssocList& params, const oledb& table) {
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        params.set(table.get_param_name(i), table.get_param_value(i));
    }
}

int signedRow(std::uint32_t row) noexcept {
    return static_cast<int>(row);
}

} // namespace

// -- life --

ODBViewRep::ODBViewRep(oledb* table) : ODBViewRep{table, static_cast<const char*>(nullptr)} {}

ODBViewRep::ODBViewRep(oledb* table, const char* spec) {
    internRevision();
    odb(table);
    if (spec) {
        fieldSpec(spec);
        return;
    }
    GrowString all;
    identityFieldSpec(all);
    fieldSpec(all.c_str());
}

namespace {

LightweightString<char> joined(const char** names) {
    GrowString text;
    for (; names && *names; ++names) {
        text.append(*names).append(',');
    }
    return names ? text.string() : LightweightString<char>{};
}

const char* textOrNull(const LightweightString<char>& text) noexcept {
    return text.isNull() ? nullptr : text.c_str();
}

} // namespace

ODBViewRep::ODBViewRep(oledb* table, const char** names)
    : ODBViewRep{table, textOrNull(joined(names))} {}

ODBViewRep::~ODBViewRep() {
    odb(nullptr);
    baseView(nullptr); // stays set where there was no table
    fieldSpec(nullptr);
}

void ODBViewRep::init() {
    refs = 0;
    fieldSpecStr = {};
    base = nullptr;
    db = nullptr;
    tableLife_.reset();
    index->abandon();
    static_cast<void>(fields.release());
    condition = nullptr;
    sortKeys = nullptr;
    dbGuard.reset();
    baseGuard.reset();
    following_ = nullptr;
    internRevision();
}

/// Goes down a chain in a loop: however long it is, its end costs no stack.
void ODBViewRep::release() noexcept {
    for (ODBViewRep* view = this; view && (view->refs == 0 || --view->refs == 0);) {
        ODBViewRep* const below = std::exchange(view->base, nullptr);
        delete view;
        view = below;
    }
}

// -- table and base view --

ODBBase* ODBViewRep::source() const noexcept {
    return base ? static_cast<ODBBase*>(base) : table();
}

/// Takes over from the new table before the old one is left: memory may run out on the way.
void ODBViewRep::odb(oledb* table) {
    if (table == db && (!table || this->table())) { // not a new table at the address of a dead one
        return;
    }
    Tarn::Ptr<Tarn::Guard> guard;
    AssocList taken;
    if (table) {
        guard = table->registerInterest(MethodCallback{this, &ODBViewRep::recordsDeletedNotify},
                                        recordsDeletedType());
        copyParams(taken, *table);
    }
    baseView(nullptr);
    clear();
    db = table;
    dbGuard = std::move(guard);
    tableLife_.reset();
    if (table) {
        tableLife_ = table->life();
        filename = table->get_filename();
        params = std::move(taken);
        internRevision();
    }
}

bool ODBViewRep::leadsTo(const ODBViewRep* view) const noexcept {
    const ODBViewRep* level = this;
    while (level && level != view) {
        level = level->base;
    }
    return level != nullptr;
}

void ODBViewRep::baseView(ODBViewRep* newBase) {
    if (newBase == base || (newBase && newBase->leadsTo(this))) {
        return;
    }
    Tarn::Ptr<Tarn::Guard> guard;
    AssocList taken;
    if (newBase) {
        guard = newBase->registerInterest(MethodCallback{this, &ODBViewRep::recordsDeletedNotify},
                                          recordsDeletedType());
        taken = newBase->params;
        ++newBase->refs; // before the old base view goes: the new one may live only through it
    }
    clear();
    baseGuard = std::move(guard);
    ODBViewRep* const old = std::exchange(base, newBase);
    if (old) {
        retargetReferences(old);
        old->release();
    }
    params = std::move(taken);
}

void ODBViewRep::fileName(LightweightString<wchar_t> path) {
    filename = std::move(path);
}

void ODBViewRep::internRevision() {
    const LightweightString<char>* const revision = params.find("OLEDB");
    if (revision && revision->isNull()) {
        params.set("OLEDB", "Rev 1");
    }
}

void ODBViewRep::addParamsFrom(oledb* other) {
    if (other) {
        copyParams(params, *other);
    }
}

void ODBViewRep::addParamsFrom(ODBViewRep* other) {
    for (std::size_t i = 0; other && other != this && i < other->params.size(); ++i) {
        params.set(other->params[i].first, other->params[i].second);
    }
}

// -- the index --

int ODBViewRep::clamped(int at) const noexcept {
    return std::clamp(at, 0, index.numIndex());
}

void ODBViewRep::clear() {
    index.clear();
}

void ODBViewRep::sizeIndexFor(int n) {
    index->sizeFor(n);
}

int ODBViewRep::append(int row) {
    const KeepAlive alive{*this};
    followToTheEnd();
    return source() ? index->put(static_cast<std::uint32_t>(row)) : 0;
}

void ODBViewRep::buildIndex() {
    const KeepAlive alive{*this};
    followToTheEnd();
    index->restart();
    const ODBBase* const from = source();
    const unsigned n = from ? from->get_num_records() : 0;
    for (unsigned i = 0; i < n; ++i) {
        index->put(i);
    }
}

bool ODBViewRep::satisfiesCondition(dbrecord*) {
    if (condition) {
        ole_splat("ODBViewRep::satisfiesCondition, not implemented\n");
    }
    return true;
}

void ODBViewRep::sortIndex() {
    if (sortKeys) {
        ole_splat("ODBViewRep::sortIndex(), not implemented!\n");
    }
}

dbrecord* ODBViewRep::operator[](int i) const {
    const ODBBase* const from = source();
    return from && isPosition(i) ? from->get_record(index[i].row) : nullptr;
}

int ODBViewRep::sourceRow(int i) const noexcept {
    return isPosition(i) ? signedRow(index[i].row) : 0;
}

int ODBViewRep::baseIndex(int i) {
    ODBBase* const from = source();
    return from && isPosition(i) ? from->baseIndex(sourceRow(i)) : 0;
}

int ODBViewRep::findViewIndexForBaseRow(unsigned long row) const {
    for (int i = 0; i < index.held(); ++i) {
        if (static_cast<unsigned long>(static_cast<long>(sourceRow(i))) == row) {
            return i;
        }
    }
    return -1;
}

// -- deletions below --

/// One message of deleted rows, which a view follows row by row: entries behind a row sink by one,
/// entries for it go. Each entry that goes is told to listeners, who may change this view, so
/// nothing of the index is kept across that. They may delete further rows, too, which the view
/// hears of at once: it follows the earlier message to the end first, as the numbers of the later
/// one ask for. What listeners throw is thrown on at the end.
class ODBViewRep::Following {
public:
    Following(ODBViewRep& view, const NotifyMsg& msg)
        : view_{view}, outer_{view.following_}, token_{msg} {
        view_.following_ = this;
    }
    Following(const Following&) = delete;
    Following& operator=(const Following&) = delete;
    ~Following() { view_.following_ = outer_; }

    void finish() {
        if (outer_) {
            outer_->finish();
        }
        while (token_.valid()) {
            if (reachesDeleted()) {
                drop(position_);
            } else {
                ++token_;
                ++earlier_;
                position_ = 0;
            }
        }
        if (!collected_.empty()) {
            const std::string all = std::exchange(collected_, {});
            tell(NotifyMsg{LightweightString<char>{std::string_view{all}}}, recordsDeletedType());
            tell(NotifyMsg{}, recordsChangedType());
        }
    }
    void passOn() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }
    /// Entries in front of the one that is looked at were taken out: no other is passed over.
    void takenOut(int from, int n) noexcept {
        if (outer_) {
            outer_->takenOut(from, n);
        }
        position_ -= std::clamp(position_ - from, 0, n);
    }

private:
    /// Lowers rows behind the deleted one up to the next entry that shows it, if there is one.
    bool reachesDeleted() noexcept {
        const long long deleted = static_cast<long long>(token_.number()) - earlier_;
        const std::span entries = view_.index.entries();
        for (; static_cast<std::size_t>(position_) < entries.size(); ++position_) {
            std::uint32_t& row = entries[static_cast<std::size_t>(position_)].row;
            if (signedRow(row) == deleted) {
                return true;
            }
            row -= signedRow(row) > deleted ? 1 : 0;
        }
        return false;
    }
    /// The collected numbers are not the removed positions but lie one less than the number of
    /// earlier rows above them: views built on this one rely on hearing exactly that.
    void drop(int i) {
        const NotifyMsg removed = view_.takeOut(i, 1);
        collected_ += std::to_string(i + earlier_ - 1);
        collected_ += ' ';
        tell(removed, recordsDeletedType());
    }
    void tell(const NotifyMsg& msg, int type) noexcept {
        try {
            view_.issueNotification(msg, type);
        } catch (...) {
            thrown_ = thrown_ ? thrown_ : std::current_exception();
        }
    }

    ODBViewRep& view_;
    Following* outer_;
    NotifyMsgTokenIterator token_;
    int earlier_ = 0; ///< rows of the message that were followed
    int position_ = 0;
    std::string collected_;
    std::exception_ptr thrown_;
};

bool ODBViewRep::isHeard() const noexcept {
    return hasListeners(recordsDeletedType()) || hasListeners(recordsChangedType());
}

int ODBViewRep::recordsDeletedNotify(const NotifyMsg& msg) {
    if (!following_ && !isHeard() && index.putOff(msg)) {
        return 0;
    }
    const KeepAlive alive{*this};
    Following following{*this, msg};
    following.finish();
    following.passOn();
    return 0;
}

void ODBViewRep::noteTakenOut(int from, int n) noexcept {
    if (following_) {
        following_->takenOut(from, n);
    }
}

/// Before entries come that are numbered as the source is now: whoever adds them may have heard of
/// a deletion before this view, or in the middle of its following one. The caller keeps the view
/// alive.
void ODBViewRep::followToTheEnd() {
    if (oledb* const below = table()) {
        below->tellTheRest(recordsDeletedType());
    }
    if (const ODBView below{base}; below) {
        below->followToTheEnd();
        below->tellTheRest(recordsDeletedType());
    }
    if (following_) {
        following_->finish();
    }
}

// -- the handle --

ODBView::ODBView(ODBViewRep* rep) noexcept : rep_{rep} {
    if (rep_) {
        ++rep_->refs;
    }
}

ODBView::ODBView(oledb* table) : ODBView{std::make_unique<ODBViewRep>(table).release()} {}

ODBView::ODBView(const ODBView& other) noexcept : ODBView{other.rep_} {}

ODBView::ODBView(ODBView&& other) noexcept : rep_{std::exchange(other.rep_, nullptr)} {}

ODBView& ODBView::operator=(const ODBView& other) noexcept {
    ODBView copy{other};
    std::swap(rep_, copy.rep_);
    return *this;
}

ODBView& ODBView::operator=(ODBView&& other) noexcept {
    ODBView taken{std::move(other)};
    std::swap(rep_, taken.rep_);
    return *this;
}

ODBView::~ODBView() {
    if (rep_) {
        rep_->release();
    }
}

ODBView ODBView::copy() const {
    return ODBView{rep_ ? rep_->copy() : nullptr};
}

ODBView ODBView::copyWithNewBaseView() const {
    return ODBView{rep_ ? rep_->copyWithNewBaseView() : nullptr};
}
