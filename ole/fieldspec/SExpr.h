#pragma once

#include "ole/ole.h"

#include <cstdint>
#include <memory>

class GrowString;
class ODBBase;

/// Element of a parsed field specification: a list node or a field reference.
class OLE_API SExprElt {
public:
    /// What an element is.
    enum Kind : std::int32_t {
        FieldReference = 0, ///< a reference, or an operator
        ListNode = 1        ///< a node of a list
    };

    /// An element of a kind.
    explicit SExprElt(Kind elementKind) noexcept : kind{elementKind} {}
    SExprElt(const SExprElt&) = delete;
    SExprElt& operator=(const SExprElt&) = delete;
    virtual ~SExprElt();
    /// Appends the element's text form.
    virtual void asString(GrowString& out) const = 0;

    const std::int32_t kind; ///< see `Kind`
};

/// A list node. It owns its element and the rest of the list.
class OLE_API SExpr : public SExprElt {
public:
    /// Takes ownership of both; either may be null.
    SExpr(SExprElt* element, SExpr* rest) noexcept : SExprElt{ListNode}, elt{element}, next{rest} {}
    /// Deletes the list from here on. Linear in its length, without recursion along it.
    ~SExpr() override;
    /// "(", the elements' texts separated by blanks, ")".
    void asString(GrowString& out) const override;
    /// Reverses a list in place and returns its new head; null gives null. Linear.
    static SExpr* reverse(SExpr* head) noexcept;

    SExprElt* elt; ///< the element, owned; null for none
    SExpr* next;   ///< the rest of the list, owned; null at the end
};

/// A reference to a field of a view's source, by number.
class OLE_API SExprRef : public SExprElt {
public:
    /// `source` is not owned; null for a reference to nothing.
    SExprRef(std::int32_t fieldNumber, ODBBase* source) noexcept
        : SExprElt{FieldReference}, field{fieldNumber}, db{source} {}
    ~SExprRef() override;
    ///@{
    /// Names another source; with `life`, only until that expires.
    void refer(ODBBase* source) noexcept;
    void refer(ODBBase* source, std::weak_ptr<const void> life) noexcept;
    ///@}
    /// The field's name, or "voidref" without a source and once it is gone.
    void asString(GrowString& out) const override;

    std::int32_t field;           ///< the field's number in the source
    ODBBase* db;                  ///< the source, not owned; null for none
    const void* unused = nullptr; ///< always null

private:
    std::weak_ptr<const void> life_;
    bool mortal_ = false; // whether life_ counts
};

/// An operator. None is made by parsing.
class OLE_API SExprOperator : public SExprElt {
public:
    SExprOperator() noexcept : SExprElt{FieldReference} {}
    ~SExprOperator() override;
    /// "op ".
    void asString(GrowString& out) const override;
};

/// Walks a list, and starts again at the front when it is moved on at the end.
class OLE_API SExprIterator {
public:
    /// Stands at the first node of a list, which is not owned.
    explicit SExprIterator(SExpr* list) noexcept : head{list}, current{list} {}
    /// Moves on; from the end (null) to the front.
    SExprIterator& operator++() noexcept;
    /// The node it stands at; null at the end.
    [[nodiscard]] SExpr* operator*() const noexcept { return current; }

private:
    SExpr* head;
    SExpr* current;
};
