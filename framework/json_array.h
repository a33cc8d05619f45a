/// A list member of a message: written as one JSON array and read back from one.
#pragma once

#include "framework/element.h"
#include "framework/export.h"
#include "framework/number.h"
#include "framework/serializable.h"

#include <cstddef>
#include <initializer_list>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::Json {

/// A sequence of `int`, or of records that derive from Serializable and can be built with default values.
///
/// Offers what one reaches for in a std::vector; items() is the vector itself.
template <typename T>
class ZELK_EXPORT Array : public Serializable {
public:
    using value_type = T;
    using iterator = typename std::vector<T>::iterator;
    using const_iterator = typename std::vector<T>::const_iterator;

    Array() = default;
    Array(std::initializer_list<T> items) : items_(items) {}
    Array(Array const&) = default;
    Array(Array&&) noexcept = default;
    Array& operator=(Array const&) = default;
    Array& operator=(Array&&) noexcept = default;
    ~Array() override = default;

    void push_back(T const& item) { items_.push_back(item); }
    void push_back(T&& item) { items_.push_back(std::move(item)); }
    template <typename... Arguments>
    T& emplace_back(Arguments&&... arguments)
    {
        return items_.emplace_back(std::forward<Arguments>(arguments)...);
    }

    std::size_t size() const noexcept { return items_.size(); }
    bool empty() const noexcept { return items_.empty(); }
    void clear() noexcept { items_.clear(); }
    void reserve(std::size_t count) { items_.reserve(count); }

    T& operator[](std::size_t index) { return items_[index]; }
    T const& operator[](std::size_t index) const { return items_[index]; }
    /// As operator[], but throws std::out_of_range past the end.
    T& at(std::size_t index) { return items_.at(index); }
    T const& at(std::size_t index) const { return items_.at(index); }
    T& front() { return items_.front(); }
    T const& front() const { return items_.front(); }
    T& back() { return items_.back(); }
    T const& back() const { return items_.back(); }

    iterator begin() noexcept { return items_.begin(); }
    iterator end() noexcept { return items_.end(); }
    const_iterator begin() const noexcept { return items_.begin(); }
    const_iterator end() const noexcept { return items_.end(); }

    std::vector<T>& items() noexcept { return items_; }
    std::vector<T> const& items() const noexcept { return items_; }

    /// Makes `target` an array node with one node an item, whatever it was: integers as integer nodes, a
    /// record as what it writes into an empty node.
    void copyToMetaData(MetaData::Element& target) const override;

    /// Replaces the items by those of an array node: integers are read leniently (framework/number.h),
    /// records by their own copyFromMetaData. A node that is not an array throws MetaData::TypeError and the
    /// list keeps its items; when an item cannot be read, those before it stay in the list.
    void copyFromMetaData(MetaData::Element const& source) override;

    friend bool operator==(Array const& a, Array const& b) { return a.items_ == b.items_; }
    friend bool operator!=(Array const& a, Array const& b) { return !(a == b); }

private:
    std::vector<T> items_;
};

template <typename T>
void Array<T>::copyToMetaData(MetaData::Element& target) const
{
    target = MetaData::Element(MetaData::Array());
    MetaData::Array& slots = target;
    unsigned int index = 0;
    for (T const& item : items_) {
        MetaData::Element& slot = slots[index++];
        if constexpr (std::is_same_v<T, int>)
            slot = MetaData::Element(MetaData::Trivial_T<long long>(item));
        else
            static_cast<Serializable const&>(item).copyToMetaData(slot);
    }
}

template <typename T>
void Array<T>::copyFromMetaData(MetaData::Element const& source)
{
    MetaData::Array const& nodes = source;
    items_.clear();
    items_.reserve(nodes.size());
    for (MetaData::Element const& node : nodes) {
        if constexpr (std::is_same_v<T, int>) {
            items_.push_back(MetaData::numberAs<int>(node));
        } else {
            Serializable& item = items_.emplace_back();
            try {
                item.copyFromMetaData(node);
            } catch (...) {
                items_.pop_back();
                throw;
            }
        }
    }
}

} // namespace Zelk::Json
