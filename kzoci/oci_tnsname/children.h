// A parent's children: a pointer to the first child and a count, the children
// chained in a ring by their `le` entries. Linking, walking and releasing them,
// once for every kind of parent.
#pragma once

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"
#include "log.h"
#include "status.h"

namespace kzoci::tns {

inline void le_init(list_entry_t *elm, ub4 type) {
  elm->type = type;
  elm->prev = elm;
  elm->next = elm;
}

inline void _le_add(list_entry_t *elm, list_entry_t *pr, list_entry_t *ne) {
  ne->prev = elm;
  elm->next = ne;
  elm->prev = pr;
  pr->next = elm;
}

inline void le_add_before(list_entry_t *listelm, list_entry_t *elm) {
  _le_add(elm, listelm->prev, listelm);
}

inline list_entry_t *le_next(list_entry_t *elm) { return elm->next; }

template <class Child>
Child *child_of(list_entry_t *entry) {
  return KZCI_RECORD_OF_ENTRY(Child, entry);
}

// Appends a child: before the ring's head, which is the first child's entry.
template <class Child>
void link_child(Child *&first, ub4 &count, Child *child) {
  ++count;
  if (first == nullptr)
    first = child;
  else
    le_add_before(&first->le, &child->le);
}

// Calls visit(child) for count children from the first one on; stops at the
// first status that is not 0 and returns it.
template <class Child, class Visit>
sword visit_children(Child *first, ub4 count, Visit visit) {
  sword status = success;
  Child *child = first;
  for (ub4 i = 0; i < count && status == success; ++i) {
    status = visit(child);
    child = child_of<Child>(le_next(&child->le));
  }
  return status;
}

// Clears and frees every child and empties the parent. A child that cannot be
// cleared stops the release: its status is logged with clear_failed and
// returned, and the parent keeps its pointer and count.
template <class Child>
sword release_children(Child *&first, ub4 &count, sword (*clear)(Child *),
                       const Message<sword> &clear_failed) {
  // The head's address is compared, never read, once its block is gone.
  list_entry_t *const header = &first->le;
  list_entry_t *entry = header;
  ub4 i = 0;
  // A ring that ends before the count is reached has no more children to release.
  do {
    Child *child = child_of<Child>(entry);
    const sword status = reported(clear(child), clear_failed);
    if (status != success) return status;
    entry = le_next(entry);
    ++i;
    kzci_free(child);
  } while (i < count && entry != header);
  if (entry != header || i != count) {
    KZ_LOG(message::ring_disagrees, i, count, header, entry);
    return failure;
  }
  first = nullptr;
  count = 0;
  return success;
}

}  // namespace kzoci::tns
