// The abnormal-authentication list shared by both daemons: a circular
// doubly linked list under g_authmng_mtx, capped at
// g_authmng_abnormal_record_max. Intakes queue with
// authmng_record_abnormal_auth; the writers drain it; the shows walk it.
#ifndef AUTHMNG_CORE_ABNORMAL_LIST_H
#define AUTHMNG_CORE_ABNORMAL_LIST_H

#include "authmng.h"

namespace authmng {

// Make the list empty (start-up). Does not free nodes.
void abnormal_list_reset();

// A node begins with the two links of the head. The links are only ever
// read and written through authmng_list_head_t, never as node->next, so
// every access to them has one type.
inline authmng_abnormal_node_t *as_node(authmng_list_head_t *link) {
    return reinterpret_cast<authmng_abnormal_node_t *>(link);
}
inline authmng_list_head_t *as_link(authmng_abnormal_node_t *node) {
    return reinterpret_cast<authmng_list_head_t *>(node);
}

// Unlink and free one node and count it off. Call with g_authmng_mtx held.
void abnormal_list_remove(authmng_abnormal_node_t *node);

// Visit every node oldest first. Call with g_authmng_mtx held.
template <typename Visit>
void abnormal_list_for_each(Visit &&visit) {
    authmng_list_head_t *head = &g_authmng_auth_abnormal_record_list;
    for (authmng_list_head_t *link = head->next; link != head; link = link->next) {
        visit(*as_node(link));
    }
}

// The drain of the abnormal writers: write each node oldest first, then
// unlink it, free it and count it off; empties the whole list. Call with
// g_authmng_mtx held.
template <typename WriteRow>
void abnormal_list_drain(WriteRow &&write_row) {
    authmng_list_head_t *head = &g_authmng_auth_abnormal_record_list;
    while (head->next != head) {
        authmng_abnormal_node_t *node = as_node(head->next);
        write_row(*node);
        abnormal_list_remove(node);
    }
}

}  // namespace authmng

#endif
