// Views: life, table and base view, the index; the handle.

#include "ole/oledb/ODBView.h"

#include "misc/diagnostics.h"
#include "ole/fieldspec/SExpr.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/GrowString.h"
#include "tarn/MethodCallback.h"

#include <algorithm>
#include <utility>

namespace {

void copyParams(AssocList& params, const oledb& table) {
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        params.set(table.get_param_name(i), table.get_param_value(i));
    }
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
    if (db && !table()) {
        return nullptr; // a base view on it has lost its rows as well
    }
    return base ? static_cast<ODBBase*>(base) : db;
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
    return source() && isPosition(i) ? index[i].signedRow() : 0;
}

int ODBViewRep::baseIndex(int i) {
    ODBBase* const from = source();
    return from && isPosition(i) ? from->baseIndex(sourceRow(i)) : 0;
}

int ODBViewRep::findViewIndexForBaseRow(unsigned long row) const {
    for (int i = 0; source() && i < index.held(); ++i) {
        if (static_cast<unsigned long>(static_cast<long>(sourceRow(i))) == row) {
            return i;
        }
    }
    return -1;
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
