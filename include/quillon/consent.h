/**
 * @file
 * The C interface to the instance that ConsentSDK::shared() returns.
 *
 * All functions are thread-safe, may be called before quillon_setup() and never wait for the network. None throws or
 * crashes on a null argument: it does nothing and returns its empty result. Errors are logged.
 *
 * Callbacks run on the main queue, after the call that took them has returned, exactly once unless documented
 * otherwise; @p context is passed through. Pointers passed to a callback belong to the SDK and are valid until it
 * returns. A null callback is allowed where the result does not matter.
 *
 * Structures begin with their size or are created by the SDK only; they grow only at the end, so programs built against
 * an older header keep working. Texts are UTF-8.
 *
 * @code
 * quillon_platform platform = {.size = sizeof platform, .application_id = "com.example.reader"};
 * if (!quillon_configure(&platform)) fputs("configured too late\n", stderr);
 * quillon_options options = {.size = sizeof options,
 *                            .app_url = "https://app.example.com/",
 *                            .cdn_url = "https://cdn.example.com/",
 *                            .tenant_id = "t",
 *                            .app_id = "a"};
 * quillon_setup(&options);
 * if (quillon_is_purpose_allowed(2)) start_measuring();
 * @endcode
 */
#ifndef QUILLON_CONSENT_H
#define QUILLON_CONSENT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Warns when the result is ignored. */
#ifdef __GNUC__
#define QUILLON_MUST_USE __attribute__((warn_unused_result))
#else
#define QUILLON_MUST_USE
#endif

/** Whether a configuration is available. */
typedef int32_t quillon_status;
enum { QUILLON_READY = 0, QUILLON_UNAVAILABLE = 1, QUILLON_FETCHING = 2 };

/** A consent status. Only granted is a consent; a zero-initialised value is not. */
typedef int32_t quillon_consent;
enum { QUILLON_NOT_DETERMINED = 0, QUILLON_GRANTED = 1, QUILLON_DECLINED = 2, QUILLON_WITHDRAWN = 3 };

/** Log threshold; 0 means errors only. */
typedef int32_t quillon_log_level;
enum {
  QUILLON_LOG_DEFAULT = 0,
  QUILLON_LOG_DEBUG = 1,
  QUILLON_LOG_INFO = 2,
  QUILLON_LOG_WARNING = 3,
  QUILLON_LOG_ERROR = 4,
  QUILLON_LOG_OFF = 5 /**< as a threshold: nothing is logged */
};

/** Which privacy signals are honoured; see quillon::PrivacySignal. */
typedef int32_t quillon_privacy_signal;
enum {
  QUILLON_SIGNAL_IGNORED = 0,  /**< no signal is honoured */
  QUILLON_SIGNAL_HONOURED = 1, /**< those of the device are */
  QUILLON_SIGNAL_GIVEN = 2     /**< those of the device are, and the application's own signal is on */
};

/** The consent model of a banner; none when the configuration states none. */
typedef int32_t quillon_compliance;
enum { QUILLON_COMPLIANCE_NONE = 0, QUILLON_NOTICE_ONLY = 1, QUILLON_OPT_IN = 2, QUILLON_OPT_OUT = 3 };

/** A consent-mode signal, such as "ad_storage" with value "granted" or "denied". */
typedef struct quillon_signal {
  const char* name;
  const char* value;
} quillon_signal;

/** Integration into the process. Null and 0 select the defaults of quillon::LinuxOptions. */
typedef struct quillon_platform {
  size_t size; /**< sizeof(quillon_platform) */
  const char* application_id;
  const char* data_directory;
  const char* vendor_url;
  /** Posts a job to the main loop, which must call `job(job_context)` exactly once, later and in order. Called from any
   * thread. Default: an SDK thread is the main queue. */
  void (*post_to_main_queue)(void (*job)(void* job_context), void* job_context, void* context);
  void* post_context;
  /** Receives the consent-mode signals after every change, on an SDK thread. */
  void (*consent_sink)(const quillon_signal* signals, size_t count, void* context);
  void* sink_context;
  const char* resource_directory;
  /** Receives the log instead of standard output. Called on any thread, concurrently; must not block or call the SDK.
   * @p unit is the SDK unit that wrote, such as "UserDefaultManager". */
  void (*log)(quillon_log_level level, const char* text, const char* unit, void* context);
  void* log_context;
} quillon_platform;

/** The data controller and its processing, for receipts; see quillon::DataController. Null: not stated. */
typedef struct quillon_controller {
  size_t size; /**< sizeof(quillon_controller) */
  const char* name;
  const char* identifier;
  const char* postal_address;
  const char* email;
  const char* phone;
  const char* website;
  const char* legal_basis;
  const char* jurisdiction;
  const char* const* personal_data; /**< ends with null, like the other lists */
  const char* const* data_sources;
  const char* const* processing;
  const char* const* storage_locations;
  const char* const* processing_locations;
  const char* retention;
  const char* validity;
  const char* withdrawal_address;
  const char* rights_contact;
  const char* authority;
} quillon_controller;

/** Options of quillon_setup(). The first four members are required; addresses end in "/". */
typedef struct quillon_options {
  size_t size; /**< sizeof(quillon_options) */
  const char* app_url;
  const char* cdn_url;
  const char* tenant_id;
  const char* app_id;
  const char* subject_id;    /**< null: a random one, which is stored */
  const char* language_code; /**< null: the device's */
  const char* location_code; /**< "US#CA"; null: the SDK asks the vendor's server */
  int64_t check_interval;    /**< seconds, at least 60; 0 means 1800 */
  quillon_log_level log_level;
  int32_t testing_mode;               /**< not 0: the draft channel, reloaded at every setup */
  const char* const* allowed_domains; /**< for the in-app web view */
  size_t allowed_domain_count;
  const char* blocked_page;          /**< resource shown for refused pages; null: the SDK's own */
  const char* bundled_configuration; /**< resource used until the first download; null: none */
  int64_t ready_within;              /**< milliseconds until a cached or bundled configuration is used; 0: no limit */
  quillon_privacy_signal privacy_signal;
  const int64_t* signal_purposes; /**< null: those that the configuration names */
  size_t signal_purpose_count;
  const quillon_controller* controller; /**< null: receipts list these facts as missing */
} quillon_options;

/** A configured purpose with its current consent; texts are in the user's language, "" where missing. */
typedef struct quillon_purpose {
  int64_t id;
  const char* name;
  const char* description;
  quillon_consent consent;
  int32_t is_essential;   /**< users cannot decline it */
  int32_t follows_device; /**< governed by the device's tracking setting, not by the user's choice */
} quillon_purpose;

/** A configured permission with the device's current answer. */
typedef struct quillon_permission {
  const char* key; /**< such as "NSCameraUsageDescription" */
  const char* name;
  const char* description;
  quillon_consent consent;
} quillon_permission;

/** The banner for the user's location, in the user's language. */
typedef struct quillon_banner {
  const char* heading;
  const char* text;   /**< may contain simple HTML */
  const char* accept; /**< button captions */
  const char* reject;
  const char* privacy_notice_text;
  const char* privacy_notice_link;
  quillon_compliance compliance;
} quillon_banner;

/** A decision: an entry of the history, or a change. Texts are the raw values of quillon::Decision's enumerations. */
typedef struct quillon_decision {
  int64_t number;         /**< in the history; 0 for a change */
  int64_t time;           /**< seconds since 1970-01-01 UTC */
  int64_t purpose_id;     /**< 0 for a permission */
  const char* permission; /**< null for a purpose */
  quillon_consent from;
  quillon_consent to;
  const char* cause;      /**< "user", "default", "essential", "tracking_status", "device", "signal", "removed" */
  const char* given_type; /**< "CONSENT_EXPLICIT", "CONSENT_IMPLICIT", "CONSENT_NO_ACTION" */
  int64_t configuration_version;
  quillon_compliance compliance;
  const char* language;
  const char* upload; /**< "pending", "uploaded", "superseded", "dropped"; null for a change */
  const char* notice; /**< digest of the notice shown, or "application"; null without one */
  const char* link;   /**< "intact", "before_chain", "broken", see quillon::HistoryLink; null for a change */
  const char* hash;   /**< digest of the entry, which the next one holds; null for a change */
} quillon_decision;

/** Why a purpose has its status. */
typedef struct quillon_explanation {
  quillon_consent consent;
  const char* cause; /**< as in quillon_decision; null without a decision */
  int64_t time;      /**< of the decision, in seconds since 1970-01-01 UTC; 0 without one */
  const char* text;  /**< a sentence in English, for developers and support */
} quillon_explanation;

/** Why the banner is due, or is not. */
typedef struct quillon_banner_explanation {
  int32_t is_due;
  const char* reason; /**< such as "never_shown"; see quillon::BannerReason */
  int64_t expires;    /**< when an answer expires, in seconds since 1970-01-01 UTC; 0 when it does not */
  int64_t version;    /**< of the configuration that asks again; else 0 */
  const char* text;   /**< a sentence in English, for developers and support */
} quillon_banner_explanation;

/** A listener or a gate, until quillon_end(). */
typedef struct quillon_listening quillon_listening;

/** Sets the platform options. Call it before the first use of the SDK; later calls change nothing and return 0. */
QUILLON_MUST_USE int32_t quillon_configure(const quillon_platform* platform);

/** @name Set-up and readiness
 * @{ */
/** Starts loading in the background; may be called again. Returns not 0 when the required options are given. */
int32_t quillon_setup(const quillon_options* options);
/** Whether a configuration is available. */
quillon_status quillon_get_status(void);
/** Calls back at once on this thread, then on the main queue with every later status; replaces an earlier callback. */
void quillon_is_ready(void (*callback)(quillon_status status, void* context), void* context);
/** Removes the callback of quillon_is_ready(). */
void quillon_remove_listeners(void);
/** Stops the SDK and waits for it, up to two seconds; see ConsentSDK::close(). Called automatically at process exit. */
void quillon_close(void);
/** Blocks until no work is running, at most the given time (clamped to 0 to one day). Not 0 when none is running. For
 * an orderly exit. */
int32_t quillon_settle(int64_t milliseconds);
/** The SDK's version, to be freed with quillon_free(); null when unknown. */
char* quillon_sdk_version(void);
/** Frees a text that the SDK returned; null does nothing. */
void quillon_free(char* text);
/** @} */

/** @name Consents
 * @{ */
/** Not 0 when the application may act on the purpose now; see ConsentSDK::isAllowed(). Fails closed. Cheap enough to
 * call every frame. */
int32_t quillon_is_purpose_allowed(int64_t purpose_id);
/** Not 0 when the device is known to grant the permission now. Never waits for the device. */
int32_t quillon_is_permission_allowed(const char* key);
/** Not 0 when a decision on the purpose is stored: an answer, or a recorded default. */
int32_t quillon_is_decided(int64_t purpose_id);
/** The status, from memory; not a permission to act. Without a configuration it is granted, the default of the
 * compliance types that need no question. */
quillon_consent quillon_get_purpose(int64_t purpose_id);
/** The state of a permission, without waiting for the device; see ConsentSDK::get(). */
quillon_consent quillon_get_permission(const char* key);
/** Stores the user's choice; durable on return. Not 0 when it was stored. */
int32_t quillon_set_purpose(int64_t purpose_id, quillon_consent consent);
int32_t quillon_set_permission(const char* key, quillon_consent consent);
/** The configured purposes or permissions, in display order. */
void quillon_get_purposes(void (*callback)(const quillon_purpose* const* purposes, size_t count, void* context),
                          void* context);
void quillon_get_permissions(void (*callback)(const quillon_permission* const* permissions, size_t count,
                                              void* context),
                             void* context);
/** The device's current answer for a permission; not determined for one that the configuration does not list. */
void quillon_check_permission(const char* key, void (*callback)(quillon_consent consent, void* context), void* context);
/** The consent-mode signals for the current consents; none when the configuration maps none. */
void quillon_get_consent_mode(void (*callback)(const quillon_signal* signals, size_t count, void* context),
                              void* context);
/** A script that passes the consents to a page in the application's own web view; see ConsentSDK::consentScript(). */
void quillon_get_consent_script(void (*callback)(const char* script, void* context), void* context);
/** Decisions, newest first: at most @p count, older than number @p before unless that is 0. The callback's `before` is
 * for the next page, 0 after the last; `damaged` counts unreadable entries. */
void quillon_get_history(size_t count, int64_t before,
                         void (*callback)(const quillon_decision* const* entries, size_t count, int64_t before,
                                          int64_t damaged, void* context),
                         void* context);
/** A signed receipt of the decisions on the purposes, or on all when @p count is 0: a JSON document; see
 * ConsentSDK::receipt(). Either the receipt or the error is null. */
void quillon_get_receipt(const int64_t* purposes, size_t count,
                         void (*callback)(const char* receipt, const char* error, void* context), void* context);
/** Why quillon_get_purpose() returns what it does: who decided, and when. */
void quillon_explain(int64_t purpose_id, void (*callback)(const quillon_explanation* explanation, void* context),
                     void* context);
/** Deletes every stored value: decisions and their history, identity, token; see ConsentSDK::removeConsents(). */
void quillon_remove_consents(void);
/** @} */

/** @name Banner
 * @{ */
/** Not 0 when the banner must be shown now; that result counts as showing it. */
int32_t quillon_is_banner_due(void);
/** Why the banner is due, or is not. Calls back before it returns, on this thread. */
void quillon_explain_banner(void (*callback)(const quillon_banner_explanation* explanation, void* context),
                            void* context);
/** The banner; null when there is none. */
void quillon_get_banner(void (*callback)(const quillon_banner* banner, void* context), void* context);
/** Stores the answer for all purposes and uploads it. @p stored is not 0 when it was stored. */
void quillon_accept_or_reject(int32_t accept, void (*callback)(int32_t stored, void* context), void* context);
/** @} */

/** @name Screens
 * Require a linked user interface of the SDK; without one an error is logged.
 * @{ */
void quillon_present_banner(void);
void quillon_present_preference_center(void);
void quillon_present_setting_prompt(const char* permission_key);
void quillon_open_link(const char* link);
/** @} */

/** @name Listeners and gates
 * Each calls back on the main queue until quillon_end(), which may be called in a callback. Returns null when a
 * callback is null, or out of memory.
 * @{ */
/** Every decision that changed a stored value; those of the application's other processes within a second. */
quillon_listening* quillon_listen_to_consents(void (*callback)(const quillon_decision* change, void* context),
                                              void* context);
/** "banner", "preferenceCenter", "settingsPrompt" or "webView", shown (not 0) or closed. */
quillon_listening* quillon_listen_to_screens(void (*callback)(const char* screen, int32_t is_shown, void* context),
                                             void* context);
/** The outcome of every upload attempt. */
quillon_listening* quillon_listen_to_uploads(void (*callback)(int32_t is_accepted, const char* message, void* context),
                                             void* context);
/** Calls back when the banner becomes due while the application runs. */
quillon_listening* quillon_listen_to_banner_due(void (*callback)(const quillon_banner_explanation* explanation,
                                                                 void* context),
                                                void* context);
/** Calls @p start when the purpose becomes allowed, or is allowed already, and @p stop when it no longer is. */
quillon_listening* quillon_while_allowed(int64_t purpose_id, void (*start)(void* context), void (*stop)(void* context),
                                         void* context);
/** Ends a listener or a gate and frees its handle; no callback begins afterwards. On other threads than the main queue
 * it waits for a running callback. Null does nothing. */
void quillon_end(quillon_listening* listening);
/** @} */

/** @name Upload and check
 * @{ */
/** Uploads pending decisions now. @p uploaded is not 0 when the server accepted them or none was pending. */
void quillon_upload_pending_consents(void (*callback)(int32_t uploaded, void* context), void* context);
/** Runs one consent check now; calls back when it is over. */
void quillon_check_consents(void (*callback)(void* context), void* context);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
