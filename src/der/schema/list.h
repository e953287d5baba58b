#ifndef TQ_DER_SCHEMA_LIST_H
#define TQ_DER_SCHEMA_LIST_H

// Lists of records: SEQUENCE { SET OF entry }, one zeroed allocation per entry, chained through
// `next`. The rule of a list says what an empty one is on the wire.

#include "der/schema/schema.h"

namespace tq {

// NULL, in every version and both directions.
struct AlwaysNull {
  static constexpr bool writes_null(const Scope& /*scope*/) { return true; }
  static constexpr bool reads_null(const Scope& /*scope*/) { return true; }
  static constexpr bool may_be_absent(const Scope& /*scope*/) { return false; }
};

// NULL in "6.0", no element in "1.1".
struct NullIn60 {
  static constexpr bool writes_null(const Scope& scope) { return scope.layout.v60; }
  static constexpr bool reads_null(const Scope& scope) { return scope.layout.v60; }
  static constexpr bool may_be_absent(const Scope& scope) { return scope.layout.v11; }
};

// The same, but a NULL is understood in every version.
struct NullIn60ReadAnywhere : NullIn60 {
  static constexpr bool reads_null(const Scope& /*scope*/) { return true; }
};

template <class Entry>
void release_list(typename Entry::Record* first) {
  while (first != nullptr) {
    auto* following = first->next;
    Entry::release(*first);
    Asn1Free(first);
    first = following;
  }
}

// Reads entries up to the end of their parent, of which there must be one at least, into a chain.
template <class Entry>
[[nodiscard]] bool read_entries(typename Entry::Record*& slot, const Scope& scope,
                                der::Cursor entries) {
  using Record = typename Entry::Record;
  Record* first = nullptr;
  Record** tail = &first;
  OnExit undo([&] { release_list<Entry>(first); });
  do {
    Block<Record> entry = make_zeroed<Record>();
    if (!entry) return false;
    Record* const node = *tail = entry.release();
    tail = &node->next;
    if (!Entry::read_element(*node, scope, entries)) return false;
  } while (!entries.at_end());
  undo.dismiss();
  slot = first;
  return true;
}

// A list as a schema: its record is the pointer to the first entry.
template <class EntrySchema, class Rule>
struct List {
  using Entry = EntrySchema;
  using EntryRecord = typename Entry::Record;
  using Record = EntryRecord*;

  [[nodiscard]] static bool plan_element(const EntryRecord* entry, const Scope& scope,
                                         der::Plan& plan) {
    if (entry == nullptr) {
      if (Rule::writes_null(scope)) plan.add(0);
      return true;
    }
    der::Plan::Open sequence;
    der::Plan::Open set;
    if (!plan.open(sequence) || !plan.open(set)) return false;
    for (; entry != nullptr; entry = entry->next) {
      if (!Entry::plan_element(*entry, scope, plan)) return false;
    }
    plan.close(set);
    plan.close(sequence);
    return true;
  }

  static der::Writer write_element(const EntryRecord* entry, const Scope& scope, der::Writer out) {
    if (entry == nullptr) {
      if (Rule::writes_null(scope)) out.null();
      return out;
    }
    out.open(der::kSequence);
    out.open(der::kSet);
    for (; entry != nullptr; entry = entry->next) out = Entry::write_element(*entry, scope, out);
    return out;
  }

  [[nodiscard]] static bool read_element(Record& first, const Scope& scope, der::Cursor& in) {
    der::Element element;
    if (in.at_end()) return Rule::may_be_absent(scope);
    if (Rule::reads_null(scope) && in.peek() == der::kNull) {
      if (!in.take(der::kNull, element) || element.length != 0) return false;
      first = nullptr;
      return true;
    }
    if (!in.take(der::kSequence, element)) return false;
    der::Cursor inside(element);
    der::Element set;
    return inside.take(der::kSet, set) && inside.finish() && set.length != 0 &&
           read_entries<Entry>(first, scope, der::Cursor(set));
  }

  static void release(Record& first) {
    release_list<Entry>(first);
    first = nullptr;
  }

  // The sizes of lists are estimated by rules of their own.
  [[nodiscard]] static std::uint64_t buffers(const EntryRecord* /*first*/) { return 0; }
};

template <class Rule, class Entry>
consteval auto list_of(Entry /*entry*/) {
  return List<Entry, Rule>{};
}

// SEQUENCE OF entry, never empty, whose first entry lies in the owner and each further one in an
// allocation of its own. What a reader has linked before it failed stays for the owner to release.
template <class Entry>
struct Chained {
  using Record = typename Entry::Record;

  [[nodiscard, gnu::noinline]] static bool plan_element(const Record& first, const Scope& scope,
                                                        der::Plan& plan) {
    der::Plan::Open open;
    if (!plan.open(open)) return false;
    for (const Record* entry = &first; entry != nullptr; entry = entry->next) {
      if (!Entry::plan_element(*entry, scope, plan)) return false;
    }
    plan.close(open);
    return true;
  }

  [[gnu::noinline]] static der::Writer write_element(const Record& first, const Scope& scope,
                                                     der::Writer out) {
    out.open(der::kSequence);
    for (const Record* entry = &first; entry != nullptr; entry = entry->next) {
      out = Entry::write_element(*entry, scope, out);
    }
    return out;
  }

  [[nodiscard, gnu::noinline]] static bool read_element(Record& first, const Scope& scope,
                                                        der::Cursor& in) {
    der::Element sequence;
    if (!in.take(der::kSequence, sequence)) return false;
    der::Cursor entries(sequence);
    if (!Entry::read_element(first, scope, entries)) return false;
    for (Record* last = &first; !entries.at_end(); last = last->next) {
      last->next = make_zeroed<Record>().release();
      if (last->next == nullptr || !Entry::read_element(*last->next, scope, entries)) return false;
    }
    return true;
  }

  static void release(Record& first) {
    Entry::release(first);
    release_list<Entry>(first.next);
    first.next = nullptr;
  }

  [[nodiscard]] static std::uint64_t buffers(const Record& first) {
    std::uint64_t sum = 0;
    for (const Record* entry = &first; entry != nullptr; entry = entry->next) {
      sum += Entry::buffers(*entry);
    }
    return sum;
  }
};

template <class Entry>
consteval auto chained(Entry /*entry*/) {
  return Chained<Entry>{};
}

}  // namespace tq

#endif
