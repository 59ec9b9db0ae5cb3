/*
 * libqx_authmng - authentication statistics and supervision for the
 * network-access daemons (802.1X/MAB, web portal, cpp client).
 *
 * Rules of this interface:
 *  - Plain C99, usable from C and C++. Only standard and POSIX headers.
 *  - A daemon calls authmng_init() once, from one thread, before any other
 *    entry. From then on the library serves that one client in the process.
 *  - Records shared with the daemons are plain structs; the daemon owns
 *    every record it passes in and may reuse it as soon as the call returns.
 *  - Functions that can fail return 0 on success and -1 on failure; event
 *    entries, writers and displays return nothing and never fail loudly.
 *  - Every statistics record, the interval baselines, the long-time reason
 *    counters, the abnormal list and the escape-check state are guarded by
 *    the recursive mutex g_authmng_mtx. Configuration values and debug
 *    switches are single words written by commands and read without a lock.
 *  - Displays print through the device command line's cli_printf.
 *  - Times are unsigned 32-bit milliseconds unless a field says otherwise;
 *    counters are unsigned 64-bit.
 *
 * What a daemon calls: authmng_init (once); then authmng_notify_auth_info
 * for every event (802.1X and web-auth daemons); the web-auth daemon also
 * authmng_notify_rd_info, authmng_notify_stamove_info and, once a minute,
 * authmng_get_check_result; the cpp client authmng_reg_cpp_callback. The
 * code texts, the socket and TLV helpers, authmng_unreg_ham and the
 * configuration values are there to use as well. docs/code-tables.md lists
 * the result, offline-reason and event codes with their texts.
 *
 * For the device's command line only (its framework walks the T... command
 * groups and calls the handlers; a daemon never calls them): the T...
 * nodes, authmanage_array, the *_cmd handlers, authmng_show_* and
 * authmng_debug_* displays, authmng_*_debug_init. For the library's timer
 * thread only: authmng_timer_task, authmng_timer_proc, authmng_write_*,
 * authmng_webauth_statistic_change, authmng_reg_ham, authmng_nty_ham_reset,
 * authmng_get_clock. The remaining functions (intakes such as
 * authmng_notify_dot1x_info, record clears, path builders) are the steps
 * behind those calls; a daemon has no need to call them.
 */
#ifndef AUTHMNG_H
#define AUTHMNG_H

#include <pthread.h>
#include <stdint.h>

#if defined(AUTHMNG_BUILDING_LIBRARY)
#define AUTHMNG_API __attribute__((visibility("default")))
#else
#define AUTHMNG_API
#endif

/* Version of this header and of the library built from it. The library's
 * soname carries the major version, which changes only when a name, a
 * record layout or a contract changes incompatibly. */
#define AUTHMNG_VERSION_MAJOR 1
#define AUTHMNG_VERSION_MINOR 0
#define AUTHMNG_VERSION_PATCH 0

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Sizes
 * ---------------------------------------------------------------------- */

#define AUTHMNG_USERNAME_LEN 256     /* bytes of authmng_auth_info_t.username */
#define AUTHMNG_MAC_LEN 6            /* bytes of a MAC address */
#define AUTHMNG_PATH_MAX 108         /* characters of a full storage path */
#define AUTHMNG_D1X_CODE_NUM 135     /* 802.1X result / offline codes 0..134 */
#define AUTHMNG_D1X_RANGE_NUM 7      /* histograms of an 802.1X record */
#define AUTHMNG_D1X_METHOD_NUM 2     /* 0 802.1X, 1 MAB */
#define AUTHMNG_REASON_NUM 4         /* long-time reason counters */
#define AUTHMNG_RANGE_SLOTS 3        /* ranges of one histogram */
#define AUTHMNG_WBA_RESULT_NUM 14    /* web-auth result codes 0..13 */
#define AUTHMNG_WBA_OFFLINE_NUM 20   /* web-auth offline reasons 0..19 */
#define AUTHMNG_WBA_RANGE_NUM 13     /* histograms of the web-auth record */
#define AUTHMNG_CHECK_TYPE_NUM 3     /* escape checks */
#define AUTHMNG_CHECK_RING_SIZE 1500 /* samples kept per escape-check ring */
#define AUTHMNG_TLV_BUF_SIZE 150     /* bytes of authmng_tlv_buf_t.data */

/* ------------------------------------------------------------------------
 * Client types and registration
 * ---------------------------------------------------------------------- */

enum authmng_client_type {
    AUTHMNG_CLIENT_CPP = 0,   /* cpp client: only the cpp counter file */
    AUTHMNG_CLIENT_WBA = 1,   /* web-authentication (portal) daemon */
    AUTHMNG_CLIENT_DOT1X = 2, /* 802.1X daemon */
    AUTHMNG_CLIENT_MAB = 3    /* MAB events of the 802.1X daemon only */
};

/* Registration record, read once by authmng_init. */
typedef struct authmng_reg {
    int32_t client_type; /* enum authmng_client_type, 0..2 */
    int32_t debug_mode;  /* attachment point of the client's debug group */
    int32_t show_mode;   /* attachment point of the client's show group */
} authmng_reg_t;

/* ------------------------------------------------------------------------
 * The event record of both daemons
 * ---------------------------------------------------------------------- */

/* 802.1X event kinds (authmng_auth_info_t.event in an 802.1X daemon). */
enum authmng_d1x_event {
    D1X_AUTH = 0,        /* result of a first authentication */
    D1X_REAUTH = 1,      /* result of a re-authentication */
    D1X_OFFLINE = 2,     /* a user went offline */
    D1X_AUTH_START = 3,  /* an authentication started */
    D1X_REAUTH_START = 4 /* a re-authentication started */
};

/* Web-auth event kinds (authmng_auth_info_t.event in a web-auth daemon). */
enum authmng_wba_event {
    WBA_EVENT_AUTH = 0,   /* authentication result */
    WBA_EVENT_OFFLINE = 1 /* user offline */
};

/*
 * One authentication event. The 802.1X daemon fills the common and the
 * 802.1X fields, the web-auth daemon the common and the web-auth fields.
 * Times in milliseconds unless noted; integers in host order except ip.
 * aaa_timeout, requestid_timeout and request_timeout directly follow rssi.
 */
typedef struct authmng_auth_info {
    int32_t client_type;                 /* 1 web-auth, 2 802.1X, 3 MAB */
    uint64_t online_num;                 /* users online now */
    uint64_t reauth_num;                 /* web-auth: re-auth requests so far */
    uint32_t ip;                         /* IPv4, network byte order */
    uint32_t auth_time;                  /* 802.1X: whole auth; web-auth: auth step */
    uint32_t scc_time;                   /* web-auth: access-control setting */
    uint32_t acct_time;                  /* web-auth: accounting step */
    uint32_t ack_time;                   /* web-auth: request to answer */
    uint32_t portal_time;                /* web-auth: portal exchange */
    uint32_t wba_state;                  /* web-auth: daemon state code */
    uint32_t wba_event;                  /* web-auth: daemon event code */
    uint32_t aaa_time;                   /* AAA time, RADIUS included */
    int32_t aaa_code;                    /* AAA result code */
    uint32_t rds_srv_time;               /* RADIUS server time */
    uint32_t rds_time;                   /* RADIUS client time, server included */
    int32_t rds_code;                    /* RADIUS result code */
    uint32_t acct_aaa_time;              /* web-auth: AAA time of accounting */
    int32_t aaa_acct_code;               /* web-auth: AAA result of accounting */
    uint32_t acct_rds_svr_time;          /* web-auth: RADIUS server time, accounting */
    uint32_t acct_rds_time;              /* web-auth: RADIUS client time, accounting */
    int32_t rds_acct_code;               /* web-auth: RADIUS result of accounting */
    uint32_t sta_time;                   /* 802.1X: waiting for the station */
    uint32_t self_time;                  /* 802.1X: time in the device itself */
    int32_t rssi;                        /* 802.1X: signal strength, dBm */
    uint8_t aaa_timeout;                 /* 802.1X: AAA timed out */
    uint8_t requestid_timeout;           /* 802.1X: identity request unanswered */
    uint8_t request_timeout;             /* 802.1X: later request unanswered */
    uint8_t rsna_notify;                 /* 802.1X: RSNA notification value */
    uint8_t start_notify;                /* 802.1X: start notification value */
    uint8_t dismatch_id;                 /* 802.1X: identifier-mismatch value */
    uint8_t logoff;                      /* 802.1X: logoff value */
    uint32_t result;                     /* 802.1X 0..134, web-auth 0..13; 0 success */
    uint32_t event;                      /* 802.1X 0..4, web-auth 0..1 */
    uint32_t offline_reason;             /* 802.1X 0..134, web-auth 0..19 */
    uint32_t online_time;                /* web-auth offline: seconds online */
    char username[AUTHMNG_USERNAME_LEN]; /* NUL-terminated user name */
    uint8_t mac[AUTHMNG_MAC_LEN];        /* station MAC address */
} authmng_auth_info_t;

/* ------------------------------------------------------------------------
 * Time-range histogram and the 802.1X statistics record
 * ---------------------------------------------------------------------- */

/* count[i] counts values v with bound[i] <= v < bound[i+1]; the last range
 * in use (num - 1) is open upwards. */
typedef struct authmng_range {
    uint32_t id;                         /* the descriptor's own index */
    uint32_t num;                        /* ranges in use: 2 or 3 */
    uint64_t count[AUTHMNG_RANGE_SLOTS]; /* values per range */
    uint64_t bound[AUTHMNG_RANGE_SLOTS]; /* lower bounds, ms */
} authmng_range_t;

/* The seven measured quantities of an 802.1X record, by descriptor. */
enum authmng_d1x_range {
    AUTHMNG_RANGE_AUTH = 0,        /* whole authentication time */
    AUTHMNG_RANGE_AUTH_EX_SRV = 1, /* auth time less RADIUS server time */
    AUTHMNG_RANGE_STA = 2,         /* waiting for the station */
    AUTHMNG_RANGE_SELF = 3,        /* in the device itself */
    AUTHMNG_RANGE_AAA = 4,         /* AAA less RADIUS */
    AUTHMNG_RANGE_RDS = 5,         /* RADIUS less RADIUS server */
    AUTHMNG_RANGE_RDS_SRV = 6      /* RADIUS server */
};

/* Method index of the per-method 802.1X arrays. */
enum authmng_d1x_method { AUTHMNG_METHOD_DOT1X = 0, AUTHMNG_METHOD_MAB = 1 };

/* One 802.1X method's statistics since the last clear. */
typedef struct authmng_dot1x_stat {
    uint64_t old_online_number;     /* online count of the first event */
    uint64_t current_online_number; /* online count of the latest event */
    uint64_t max_online_number;     /* highest online count reported */
    uint64_t auth_total;            /* first-authentication results */
    uint32_t auth_success_rate;     /* percent, truncated */
    uint32_t auth_avg_time;         /* ms, running average of successes */
    uint64_t auth_result[AUTHMNG_D1X_CODE_NUM];
    uint64_t reauth_total; /* re-authentication results */
    uint64_t reauth_result[AUTHMNG_D1X_CODE_NUM];
    uint32_t reauth_success_rate; /* percent, truncated */
    uint64_t offline_total;       /* offline events */
    uint64_t offline_reason[AUTHMNG_D1X_CODE_NUM];
    authmng_range_t range[AUTHMNG_D1X_RANGE_NUM];
    uint64_t over1s_total; /* slow (above threshold, <= 3 s) sums */
    uint64_t over1s_sta;
    uint64_t over1s_self;
    uint64_t over1s_aaa;
    uint64_t over1s_rds;
    uint64_t over1s_rds_srv;
    uint64_t over3s_total; /* longer than 3 s sums */
    uint64_t over3s_sta;
    uint64_t over3s_self;
    uint64_t over3s_aaa;
    uint64_t over3s_rds;
    uint64_t over3s_rds_srv;
    int32_t success_rssi_sum; /* dBm sums, wrapping modulo 2^32 */
    int32_t fail_rssi_sum;
    int32_t offline_rssi_sum;
} authmng_dot1x_stat_t;

/* ------------------------------------------------------------------------
 * Abnormal authentication list
 * ---------------------------------------------------------------------- */

/* Head of the circular doubly linked abnormal list; the list is empty when
 * next points at the head itself. Nodes start with the same two links. */
typedef struct authmng_list_head {
    struct authmng_list_head *next; /* oldest node, or the head */
    struct authmng_list_head *prev; /* newest node, or the head */
} authmng_list_head_t;

/* One queued abnormal event, owned by the list. */
typedef struct authmng_abnormal_node {
    struct authmng_list_head *next; /* next (newer) node, or the head */
    struct authmng_list_head *prev; /* previous (older) node, or the head */
    uint64_t time;                  /* queue time, seconds since the epoch */
    authmng_auth_info_t info;       /* copy of the event record */
} authmng_abnormal_node_t;

/* ------------------------------------------------------------------------
 * Web-auth records
 * ---------------------------------------------------------------------- */

/* Redirect report. rd_result 0 succeeded, 1 and 2 other outcomes. */
#define WBA_RESULT_RD_MAX 3 /* first invalid rd_result */

typedef struct authmng_rd_info {
    uint64_t rd_user;   /* users redirected so far */
    uint32_t reserved;  /* not read by the library */
    uint32_t rd_time;   /* ms */
    uint32_t rd_result; /* 0..2 */
} authmng_rd_info_t;

/* Station-move report. */
typedef struct authmng_stamove_info {
    uint32_t move_type; /* 0 or 1 */
    uint8_t move_fail;  /* nonzero when the move failed */
} authmng_stamove_info_t;

/* The web-auth statistics since the last clear. */
typedef struct authmng_webauth_stat {
    uint64_t old_online_number;
    uint64_t current_online_number;
    uint64_t max_online_number;
    uint64_t auth_total;
    uint32_t auth_avg_time; /* ms */
    uint64_t auth_result[AUTHMNG_WBA_RESULT_NUM];
    uint64_t http_req_count; /* accepted redirect reports */
    uint64_t rd_user;        /* copy of the daemon's figure */
    uint64_t rd_avg_time;    /* ms */
    uint64_t offline_total;
    uint64_t offline_reason[AUTHMNG_WBA_OFFLINE_NUM];
    uint64_t aggregate_time[AUTHMNG_WBA_RANGE_NUM]; /* ms sums */
    uint64_t move_count;
    uint64_t move_fail_count;
    uint64_t reauth_number;     /* copy of the daemon's figure */
    uint64_t online_time_total; /* seconds */
    authmng_range_t range[AUTHMNG_WBA_RANGE_NUM];
    uint32_t average_online_time; /* minutes */
} authmng_webauth_stat_t;

/* ------------------------------------------------------------------------
 * User escape (server-delay check)
 * ---------------------------------------------------------------------- */

enum authmng_check_type {
    AUTHMNG_CHECK_REDIRECT = 0,
    AUTHMNG_CHECK_AUTH = 1,
    AUTHMNG_CHECK_AUTHTIMEOUT = 2
};

/* The web-auth daemon's running totals. */
typedef struct authmng_check_input {
    uint32_t total_redirect_count;
    uint32_t total_redirect_time; /* ms */
    uint32_t total_auth_count;
    uint32_t total_auth_time; /* ms */
    uint32_t total_auth_timeout_count;
    uint32_t max_online_user;
} authmng_check_input_t;

/* The verdict. */
typedef struct authmng_check_result {
    uint32_t escape_time;  /* minutes; 0 when no escape is decided */
    uint32_t escape_ratio; /* percent of users that escape: 100 or 0 */
    uint8_t reboot_enable; /* nonzero: restart the redirect side */
} authmng_check_result_t;

/* The previous totals of the check. */
typedef struct authmng_info_record {
    uint32_t total_redirect_count;
    uint32_t total_redirect_time;
    uint32_t total_auth_count;
    uint32_t total_auth_time;
    uint32_t total_auth_timeout_count;
    uint8_t wrapped; /* a total went down at some report */
} authmng_info_record_t;

/* State of one check. */
typedef struct authmng_check {
    uint32_t type;
    uint32_t avg_value;
    uint32_t max_value;
    uint32_t min_value;
    uint32_t zero_count;
    uint32_t total_count;
    uint32_t abnormal_count;
    uint32_t abnormal_value[AUTHMNG_CHECK_RING_SIZE];
    uint32_t recent_value[AUTHMNG_CHECK_RING_SIZE];
    uint32_t pre_escape_ratio;
    uint32_t escape_count;
    uint16_t abnormal_pos;
    uint16_t recent_pos;
} authmng_check_t;

/* ------------------------------------------------------------------------
 * TLV buffer
 * ---------------------------------------------------------------------- */

typedef struct authmng_tlv_buf {
    uint16_t used;                      /* bytes of data in use */
    uint16_t left;                      /* bytes of data still free */
    uint8_t data[AUTHMNG_TLV_BUF_SIZE]; /* elements: type u16, len u16, value */
} authmng_tlv_buf_t;

/* ------------------------------------------------------------------------
 * Command line
 * ---------------------------------------------------------------------- */

/* The command-line framework's parse node and parse-state block; defined
 * by the device's framework (see platform/authmng_platform.h). */
struct cli_parse_node;
struct cli_parse_state;

/* Command codes stored by the keywords of the show and debug groups into
 * value slot 20000 of the parse state. */
enum authmng_cmd_code {
    AUTHMNG_CMD_DEBUG_EVENT = 0,
    AUTHMNG_CMD_DEBUG_ERROR = 1,
    AUTHMNG_CMD_SHOW_STATISTIC = 1,
    AUTHMNG_CMD_SHOW_FAIL = 2,
    AUTHMNG_CMD_SHOW_TELNET = 3,
    AUTHMNG_CMD_DEBUG_ABNORMAL_VALUE = 3,
    AUTHMNG_CMD_SHOW_ABNORMAL = 4,
    AUTHMNG_CMD_DEBUG_RECORD_NUM = 4,
    AUTHMNG_CMD_SHOW_ABNORMAL_AUTH = 5,
    AUTHMNG_CMD_DEBUG_WRITE_CLOCK = 5,
    AUTHMNG_CMD_SHOW_ABNORMAL_REAUTH = 6,
    AUTHMNG_CMD_SHOW_ABNORMAL_OFFLINE = 7,
    AUTHMNG_CMD_DEBUG_CLEAR_STATISTIC = 7,
    AUTHMNG_CMD_SHOW_TMP = 8,
    AUTHMNG_CMD_SHOW_AUTH_DETAIL = 9,
    AUTHMNG_CMD_DEBUG_WRITE_TMP = 9,
    AUTHMNG_CMD_SHOW_REAUTH_DETAIL = 10,
    AUTHMNG_CMD_DEBUG_SUMMARY = 10,
    AUTHMNG_CMD_SHOW_OFFLINE_DETAIL = 11
};

/* Event-kind filter of authmng_show_dot1x_statistic_abnormal that shows
 * every record. */
#define AUTHMNG_ABNORMAL_FILTER_ALL 5

/* One entry of the debug-switch table handed to the debug registry. */
typedef struct authmng_debug_switch {
    uint8_t *sw;      /* the switch byte, NULL in the terminator */
    const char *desc; /* description, NULL in the terminator */
} authmng_debug_switch_t;

/* ------------------------------------------------------------------------
 * Process-wide configuration values (written by commands, read by all
 * threads without a lock; a new value takes effect at its next use)
 * ---------------------------------------------------------------------- */

AUTHMNG_API extern uint8_t g_authmng_statistic_enable;      /* 1: master switch */
AUTHMNG_API extern uint32_t g_authmng_write_tmp_clock;      /* 30 min between interval writes */
AUTHMNG_API extern uint32_t g_authmng_interval;             /* 30 ticks to next interval write */
AUTHMNG_API extern uint32_t g_authmng_write_file_clock;     /* 1: hour of the daily write */
AUTHMNG_API extern uint32_t g_authmng_no_write_count;       /* 1: ticks since daily write */
AUTHMNG_API extern uint32_t g_authmng_abnormal_record_max;  /* 1000: abnormal list cap */
AUTHMNG_API extern uint32_t g_authmng_escape_time;          /* 30 min */
AUTHMNG_API extern uint32_t g_authmng_escape_life;          /* 30 reports */
AUTHMNG_API extern uint32_t g_authmng_check_ratio;          /* 10 percent */
AUTHMNG_API extern uint32_t g_authmng_check_auth_threshold; /* 5000 ms */
AUTHMNG_API extern uint32_t g_authmng_check_redirect_threshold; /* 3000 ms */
AUTHMNG_API extern uint32_t g_authmng_check_wave;               /* 20000, not used */
AUTHMNG_API extern const char *g_authmng_type_str[AUTHMNG_CHECK_TYPE_NUM];
AUTHMNG_API extern uint8_t g_authmng_check_open; /* 0: user escape off */

/* ------------------------------------------------------------------------
 * Process-wide state
 * ---------------------------------------------------------------------- */

AUTHMNG_API extern int32_t g_authmng_client_type;
AUTHMNG_API extern uint32_t g_authmng_authtime_abnormal_value; /* ms */
AUTHMNG_API extern uint32_t g_authmng_abnormal_record_num;
AUTHMNG_API extern authmng_list_head_t g_authmng_auth_abnormal_record_list;
AUTHMNG_API extern pthread_mutex_t g_authmng_mtx;
AUTHMNG_API extern pthread_t g_authmng_timer_thread;
AUTHMNG_API extern uint32_t g_authmng_statistic_reverse;
AUTHMNG_API extern uint32_t g_authmng_max_cpp;
AUTHMNG_API extern uint32_t (*g_authmng_cpp_handler)(int);
AUTHMNG_API extern uint8_t g_authmng_lib_event_dbg;
AUTHMNG_API extern uint8_t g_authmng_lib_error_dbg;
AUTHMNG_API extern authmng_debug_switch_t authmanage_array[3];

AUTHMNG_API extern authmng_dot1x_stat_t g_amg_d1x[AUTHMNG_D1X_METHOD_NUM];
AUTHMNG_API extern authmng_dot1x_stat_t g_amg_d1x_tmp[AUTHMNG_D1X_METHOD_NUM];
AUTHMNG_API extern uint64_t g_authmng_sec_range_reason[AUTHMNG_REASON_NUM];
AUTHMNG_API extern uint64_t g_authmng_thi_range_reason[AUTHMNG_REASON_NUM];

AUTHMNG_API extern authmng_webauth_stat_t g_authmng_webauth;
AUTHMNG_API extern authmng_webauth_stat_t g_authmng_webauth_tmp;

AUTHMNG_API extern authmng_check_t g_authmng_check[AUTHMNG_CHECK_TYPE_NUM];
AUTHMNG_API extern authmng_info_record_t g_authmng_info_record;
AUTHMNG_API extern uint32_t g_authmng_max_online_user;

/* Command groups and the named nodes inside them (parse nodes of the
 * device's command-line framework). */
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_lib_cmd;
AUTHMNG_API extern struct cli_parse_node Texec_authmanage_lib_show_cmd;
AUTHMNG_API extern struct cli_parse_node Texec_web_authmng_lib_show_cmd;
AUTHMNG_API extern struct cli_parse_node Texec_1x_authmng_lib_show_cmd;
AUTHMNG_API extern struct cli_parse_node Tauthmng_proc_debug_group;
AUTHMNG_API extern struct cli_parse_node Tauthmanage_lib_debug_group;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_auth_threshod_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_ratio_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_redirect_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_time_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_escape_life_no;
AUTHMNG_API extern struct cli_parse_node Tcfg_authmng_statistic_no;
AUTHMNG_API extern struct cli_parse_node Tauthmng_show_d1x;
AUTHMNG_API extern struct cli_parse_node Tauthmng_debug_array;
AUTHMNG_API extern struct cli_parse_node Tauthmanage_debug_array;

/* ------------------------------------------------------------------------
 * Start-up
 * ---------------------------------------------------------------------- */

/* Start the library for the client named in reg: storage directories,
 * command groups, debug switches, statistics records, mutex, abnormal list
 * and timer thread. Call once per process, from one thread, before any
 * other entry. Returns 0, or -1 with a syslog record naming the step. */
AUTHMNG_API int32_t authmng_init(const authmng_reg_t *reg);

/* Make *mutex recursive. Returns 0 (-1 for a NULL mutex); ends the process
 * with status 1 when the mutex cannot be initialised. */
AUTHMNG_API int authmng_init_mtx(pthread_mutex_t *mutex);

/* Register a client's debug group and switches (called by authmng_init).
 * Return what the debug registry returns. */
AUTHMNG_API int authmng_dot1x_debug_init(int debug_mode);
AUTHMNG_API int authmng_webauth_debug_init(int debug_mode);

/* Debug-registry callback: prints which debug switches are on. */
AUTHMNG_API void authmng_show_debug_state(void);

/* Store the cpp client's sampling callback (NULL stops sampling). May be
 * called before or after authmng_init. Returns 0. */
AUTHMNG_API int authmng_reg_cpp_callback(uint32_t (*callback)(int));

/* ------------------------------------------------------------------------
 * Storage paths
 * ---------------------------------------------------------------------- */

/* Full path of relative (which begins with "/") under $TMPDIR, or under the
 * flash home. 0 when full holds it (at most size characters), else -1. */
AUTHMNG_API int authmng_make_vpupath(const char *relative, char *full, int size);
AUTHMNG_API int authmng_make_flashpath(const char *relative, char *full, int size);

/* Create every directory of relative in the flash area (flash == 1) or the
 * temporary area. 0 when all exist afterwards, -1 when the path cannot be
 * built, else the error number of the failed creation. Start-up only. */
AUTHMNG_API int authmng_create_dir(const char *relative, unsigned char flash);

/* ------------------------------------------------------------------------
 * Event entries (any daemon thread, after authmng_init)
 * ---------------------------------------------------------------------- */

/* The one entry for authentication, re-authentication, offline and start
 * events of both daemons; routes the record by its client_type. */
AUTHMNG_API void authmng_notify_auth_info(const authmng_auth_info_t *auth_info);

/* 802.1X / MAB intake (normally reached through authmng_notify_auth_info). */
AUTHMNG_API void authmng_notify_dot1x_info(authmng_auth_info_t *auth_info);

/* Web-auth intakes. */
AUTHMNG_API void authmng_notify_webauth_info(const authmng_auth_info_t *auth_info);
AUTHMNG_API void authmng_notify_rd_info(const authmng_rd_info_t *rd_info);
AUTHMNG_API void authmng_notify_stamove_info(const authmng_stamove_info_t *stamove_info);

/* Queue a copy of an event record (authmng_auth_info_t) on the abnormal
 * list, evicting the oldest record at the cap. Takes g_authmng_mtx. */
AUTHMNG_API void authmng_record_abnormal_auth(const void *auth_info);

/* Classify a slow authentication into the long-time reason counters;
 * rssi_field points at authmng_auth_info_t.rssi of the event. Call with
 * g_authmng_mtx held. */
AUTHMNG_API void authmng_dot1x_statistic_loogtime_reason(uint32_t method, uint32_t index,
                                                         uint32_t time, const int32_t *rssi_field);

/* ------------------------------------------------------------------------
 * 802.1X record, codes and files
 * ---------------------------------------------------------------------- */

/* Clear one authmng_dot1x_stat_t and set up its seven histograms. Callers
 * clearing a record in use hold g_authmng_mtx. */
AUTHMNG_API void authmng_dot1x_init(void *record);

/* Code texts; never NULL, "" for a code without text. */
AUTHMNG_API const char *authmng_dot1x_auth_reason_str(uint32_t code);
AUTHMNG_API const char *authmng_dot1x_offline_reason_str(uint32_t code);
AUTHMNG_API const char *authmng_dot1x_event_str(uint32_t event);

/* Interval file (temporary area), daily file and abnormal file (flash). */
AUTHMNG_API void authmng_write_dot1x_statistic_to_tmpfile(void);
AUTHMNG_API void authmng_write_dot1x_statistic_to_flashfile(void);
AUTHMNG_API void authmng_write_dot1x_abnormal_record_to_file(void);

/* Append "," and the decimal value to the text in dst (a buffer of size
 * bytes), never beyond size - 1 characters. */
AUTHMNG_API void authmng_compose_inter_str(char *dst, int32_t size, uint64_t value);

/* 802.1X displays; index 0 802.1X, 1 MAB. */
AUTHMNG_API void authmng_show_dot1x_statistic(uint32_t index);
AUTHMNG_API void authmng_show_dot1x_statistic_fail(uint32_t index);
AUTHMNG_API void authmng_show_dot1x_auth_detail(uint32_t index);
AUTHMNG_API void authmng_show_dot1x_reauth_detail(uint32_t index);
AUTHMNG_API void authmng_show_dot1x_offline_detail(uint32_t index);
AUTHMNG_API void authmng_show_dot1x_statistic_telnet(uint32_t index);
/* filter: an event kind 0..4, or AUTHMNG_ABNORMAL_FILTER_ALL. */
AUTHMNG_API void authmng_show_dot1x_statistic_abnormal(uint32_t filter);

/* ------------------------------------------------------------------------
 * Web-auth record, files and displays
 * ---------------------------------------------------------------------- */

/* Clear the live record and the baseline and set up their histograms. */
AUTHMNG_API void authmng_webauth_init(void);

/* Whether the web-auth statistics changed since the last interval write;
 * always 1. */
AUTHMNG_API int authmng_webauth_statistic_change(void);

AUTHMNG_API void authmng_write_webauth_statistic_to_tmp(void);
AUTHMNG_API void authmng_write_webauth_abnormal_record_to_file(void);

AUTHMNG_API void authmng_show_webauth_statistic(void);
AUTHMNG_API void authmng_show_webauth_statistic_abnormal(void);
AUTHMNG_API void authmng_show_webauth_statistic_telnet(void);
AUTHMNG_API void authmng_show_webauth_tmp_file(void);

/* ------------------------------------------------------------------------
 * User escape
 * ---------------------------------------------------------------------- */

/* The web-auth daemon's once-a-minute report of its running totals; fills
 * *result with the verdict (all zero while user escape is off and on a
 * report that only sets the baseline). Runs on the calling thread and takes
 * g_authmng_mtx.
 *
 * A total smaller than at the previous report (the daemon restarted its
 * totals, or a 32-bit total passed its top) sets the wrapped flag and counts
 * its new value alone as the period's increase (not the wrap-around
 * difference, which after a restart would be a made-up increase of up to
 * 2^32). After a restart the samples are those of the time since the
 * restart; after a time total wrapped, that one report's sample is
 * understated, never overstated, so neither starts a false escape or
 * restart.
 *
 * The verdict carries every escape in progress: escape_ratio is the largest
 * ratio of the checks, so an escape held by the auth check is not reported
 * as 0 by the authtimeout check that runs after it; when an earlier check
 * decides (the redirect check setting reboot_enable) the later checks do not
 * run, yet an escape one of them holds is still reported. escape_time is
 * set whenever a check starts, keeps or ends an escape in the report. */
AUTHMNG_API void authmng_get_check_result(const authmng_check_input_t *totals,
                                          authmng_check_result_t *result);

/* Append one entry (ctime line and line) to the escape log. */
AUTHMNG_API void authmng_save_abnormal_log(const char *line);

AUTHMNG_API void authmng_show_check_info(void);
AUTHMNG_API void authmng_debug_webauth_check_info(void);

/* ------------------------------------------------------------------------
 * Timer thread and health monitor
 * ---------------------------------------------------------------------- */

/* Thread body started by authmng_init; never returns. */
AUTHMNG_API void *authmng_timer_task(void *unused);

/* One timer tick (the timer thread calls it once a minute). */
AUTHMNG_API void authmng_timer_proc(void);

/* Monotonic time in whole seconds. */
AUTHMNG_API int64_t authmng_get_clock(void);

/* Append one row to the cpp file. */
AUTHMNG_API void authmng_write_cpp_to_file(void);

AUTHMNG_API int authmng_reg_ham(int32_t pid, int32_t tid, int32_t a, int32_t b);
AUTHMNG_API int authmng_nty_ham_reset(int32_t pid, int32_t tid, int32_t a, int32_t b);
AUTHMNG_API void authmng_unreg_ham(int32_t pid, int32_t tid, int32_t a, int32_t b);

/* ------------------------------------------------------------------------
 * Command handlers (called by the command-line framework)
 * ---------------------------------------------------------------------- */

AUTHMNG_API void authmng_escape_enable_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_escape_when_auth_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_escape_when_ratio_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_escape_when_redirect_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_escape_time_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_escape_life_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_statistic_enable_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_show_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_webauth_show_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_show_1x_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_show_webauth_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_proc_debug_cmd(struct cli_parse_state *ps);
AUTHMNG_API void authmng_debug_summary(void);

/* ------------------------------------------------------------------------
 * Unix-domain sequenced-packet sockets and TLV messages
 * ---------------------------------------------------------------------- */

/* Create a socket bound to path (first 107 characters); -1 on failure. */
AUTHMNG_API int authmng_unix_socket_init(const char *path);
/* Connect; -1 when path is missing or longer than 107 characters. */
AUTHMNG_API int authmng_unix_connect(int socket, const char *path);
/* Send all of buffer without blocking: length, 0 or -1. */
AUTHMNG_API int authmng_unix_send(int socket, const void *buffer, int length);
/* Receive without blocking, retrying while no data: bytes, 0 or -1. */
AUTHMNG_API int authmng_unix_receive(int socket, void *buffer, int length);

AUTHMNG_API void authmng_tlv_buf_init(authmng_tlv_buf_t *buffer);
/* Bytes added (4 + length), 0 when nothing was added, -1 when it does not
 * fit. Only type 0 is defined. */
AUTHMNG_API int authmng_add_tlv(short type, const void *value, unsigned int length,
                                authmng_tlv_buf_t *buffer);

#ifdef __cplusplus
}
#endif

#endif /* AUTHMNG_H */
