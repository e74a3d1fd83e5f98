// Parsed field specifications: lists of references. A specification may repeat a name any number of
// times, so lists are walked in loops.

#include "ole/fieldspec/SExpr.h"

#include "ole/oledb/ODBBase.h"
#include "tarn/GrowString.h"

#include <utility>

SExprElt::~SExprElt() = default;
SExprRef::~SExprRef() = default;
SExprOperator::~SExprOperator() = default;

SExpr::~SExpr() {
    delete elt;
    for (SExpr* node = next; node;) {
        SExpr* const rest = std::exchange(node->next, nullptr);
        delete node;
        node = rest;
    }
}

void SExpr::asString(GrowString& out) const {
    out.append('(');
    for (const SExpr* node = this; node; node = node->next) {
        if (node != this) {
            out.append(' ');
        }
        if (node->elt) {
            node->elt->asString(out);
        }
    }
    out.append(')');
}

SExpr* SExpr::reverse(SExpr* head) noexcept {
    SExpr* reversed = nullptr;
    while (head) {
        SExpr* const rest = std::exchange(head->next, reversed);
        reversed = head;
        head = rest;
    }
    return reversed;
}

void SExprRef::refer(ODBBase* source) noexcept {
    db = source;
    mortal_ = false;
}

void SExprRef::refer(ODBBase* source, std::weak_ptr<const void> life) noexcept {
    db = source;
    life_ = std::move(life);
    mortal_ = true;
}

void SExprRef::asString(GrowString& out) const {
    const bool there = db && !(mortal_ && life_.expired());
    out.append(there ? db->get_fieldname(static_cast<unsigned>(field)) : "voidref");
}

void SExprOperator::asString(GrowString& out) const {
    out.append("op ");
}

SExprIterator& SExprIterator::operator++() noexcept {
    current = current ? current->next : head;
    return *this;
}
