#pragma once

#include "objectmodel/KeyedMap.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

namespace pipespec {

class IBaseObject;
class IObjectCollection;
class VariantMap;

using ObjectRef = std::shared_ptr<IBaseObject>;
using CollectionRef = std::shared_ptr<IObjectCollection>;
using VariantMapRef = std::shared_ptr<VariantMap>;

// A value of a named option, a trace value or a check result: nothing, a flag,
// a number, a text, an object, a collection or a keyed map of such values.
class Variant {
public:
    using Storage =
        std::variant<std::monostate, bool, std::int64_t, double, std::string, ObjectRef, CollectionRef, VariantMapRef>;

    Variant() = default;
    Variant(bool v) : value_(v) {}
    Variant(int v) : value_(std::int64_t{v}) {}
    Variant(std::int64_t v) : value_(v) {}
    Variant(double v) : value_(v) {}
    Variant(std::string v) : value_(std::move(v)) {}
    Variant(const char* v) : value_(std::string(v)) {}
    template <class T>
    requires std::is_convertible_v<std::shared_ptr<T>, ObjectRef> Variant(std::shared_ptr<T> v)
        : value_(ObjectRef(std::move(v)))
    {
        if (!std::get<ObjectRef>(value_)) value_ = std::monostate{};
    }
    Variant(CollectionRef v) : value_(std::move(v)) {}
    Variant(VariantMapRef v) : value_(std::move(v)) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
    const Storage& storage() const { return value_; }

    // Typed reads answer empty when the variant holds something else.
    ObjectRef object() const { return get<ObjectRef>(); }
    CollectionRef collection() const { return get<CollectionRef>(); }
    VariantMapRef map() const { return get<VariantMapRef>(); }
    template <class T>
    std::shared_ptr<T> objectAs() const
    {
        return std::dynamic_pointer_cast<T>(object());
    }

    bool operator==(const Variant& other) const { return value_ == other.value_; }

private:
    template <class T>
    T get() const
    {
        const T* p = std::get_if<T>(&value_);
        return p ? *p : T{};
    }
    Storage value_;
};

class VariantMap : public KeyedMap<Variant> {};

}  // namespace pipespec
