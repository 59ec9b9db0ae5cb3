// Queueing onto the abnormal list.
#include "core/abnormal_list.h"

#include <cstddef>
#include <cstring>

#include "authmng_platform.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/memory.h"
#include "core/relaxed.h"

static_assert(offsetof(authmng_abnormal_node_t, next) == offsetof(authmng_list_head_t, next),
              "a node starts with the links of the head");
static_assert(offsetof(authmng_abnormal_node_t, prev) == offsetof(authmng_list_head_t, prev),
              "a node starts with the links of the head");

namespace authmng {

void abnormal_list_reset() {
    LibraryLock lock;
    g_authmng_auth_abnormal_record_list.next = &g_authmng_auth_abnormal_record_list;
    g_authmng_auth_abnormal_record_list.prev = &g_authmng_auth_abnormal_record_list;
    g_authmng_abnormal_record_num = 0;
}

void abnormal_list_remove(authmng_abnormal_node_t *node) {
    authmng_list_head_t *link = as_link(node);
    link->prev->next = link->next;
    link->next->prev = link->prev;
    release(node);
    --g_authmng_abnormal_record_num;
}

}  // namespace authmng

using namespace authmng;

extern "C" void authmng_record_abnormal_auth(const void *auth_info) {
    if (auth_info == nullptr) return;
    LibraryLock lock;
    auto *node = static_cast<authmng_abnormal_node_t *>(zalloc(sizeof(authmng_abnormal_node_t)));
    if (node == nullptr) return;
    node->time = qx_time_get(QX_TIME_WALL_SECONDS);
    if (node->time == QX_TIME_FAILED) {
        release(node);
        return;
    }
    authmng_list_head_t *head = &g_authmng_auth_abnormal_record_list;
    if (g_authmng_abnormal_record_num >= load_relaxed(g_authmng_abnormal_record_max) &&
        head->next != head) {
        abnormal_list_remove(as_node(head->next));
    }
    memcpy(&node->info, auth_info, sizeof node->info);
    authmng_list_head_t *link = as_link(node);
    link->prev = head->prev;
    link->next = head;
    head->prev->next = link;
    head->prev = link;
    ++g_authmng_abnormal_record_num;
    AUTHMNG_EVENT_DBG("add abnormal info to file, the total abnormal num: %d\n",
                      static_cast<int>(g_authmng_abnormal_record_num));
}
