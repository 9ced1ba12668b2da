/**
 * @file
 * The SDK for applications that are not written in C++: the same instance that ConsentSDK::shared() is, as C functions.
 *
 * Every function may be called from any thread, also before quillon_setup(), and never waits for the network. None
 * throws or crashes on a null argument: it does nothing and answers with its empty result. What goes wrong is in the
 * log.
 *
 * A callback is called on the main queue, after the call that took it has returned, exactly once where nothing else is
 * said; its @p context is handed back untouched. Whatever it is pointed to belongs to the SDK and is valid until the
 * callback returns. A null callback is allowed where the answer does not matter.
 *
 * Structures begin with their size or are made by the SDK alone: they grow at their end only, and a program that was
 * built against an older header goes on working. Texts are UTF-8.
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

/** Marks an answer that says whether the call did anything. */
#ifdef __GNUC__
#define QUILLON_MUST_USE __attribute__((warn_unused_result))
#else
#define QUILLON_MUST_USE
#endif

/** Whether a configuration is at hand. */
typedef int32_t quillon_status;
enum { QUILLON_READY = 0, QUILLON_UNAVAILABLE = 1, QUILLON_FETCHING = 2 };

/** A decision. Anything but granted means no, and 0, which a record of zeros holds, is no consent. */
typedef int32_t quillon_consent;
enum { QUILLON_NOT_DETERMINED = 0, QUILLON_GRANTED = 1, QUILLON_DECLINED = 2, QUILLON_WITHDRAWN = 3 };

/** Threshold of the log; 0 means errors only. */
typedef int32_t quillon_log_level;
enum {
  QUILLON_LOG_DEFAULT = 0,
  QUILLON_LOG_DEBUG = 1,
  QUILLON_LOG_INFO = 2,
  QUILLON_LOG_WARNING = 3,
  QUILLON_LOG_ERROR = 4
};

/** The consent model of a banner; none when the configuration does not say. */
typedef int32_t quillon_compliance;
enum { QUILLON_COMPLIANCE_NONE = 0, QUILLON_NOTICE_ONLY = 1, QUILLON_OPT_IN = 2, QUILLON_OPT_OUT = 3 };

/** A consent-mode signal: "ad_storage" and "granted", or "denied". */
typedef struct quillon_signal {
  const char* name;
  const char* value;
} quillon_signal;

/** How the SDK fits into the process. What is null or 0 has the default of quillon::LinuxOptions. */
typedef struct quillon_platform {
  size_t size; /**< sizeof(quillon_platform) */
  const char* application_id;
  const char* data_directory;
  const char* vendor_url;
  /** Hands a job to the main loop, which has to call `job(job_context)` exactly once, in order. Called from any thread.
   * Without one, a thread of the SDK's own is the main queue. */
  void (*post_to_main_queue)(void (*job)(void* job_context), void* job_context, void* context);
  void* post_context;
  /** Receives the consent-mode signals after every change, on a thread of the SDK's. */
  void (*consent_sink)(const quillon_signal* signals, size_t count, void* context);
  void* sink_context;
} quillon_platform;

/** What quillon_setup() takes. The first four addresses and names are required; addresses end in "/". */
typedef struct quillon_options {
  size_t size; /**< sizeof(quillon_options) */
  const char* app_url;
  const char* cdn_url;
  const char* tenant_id;
  const char* app_id;
  const char* subject_id;    /**< null: a random one, which is kept */
  const char* language_code; /**< null: the device's */
  const char* location_code; /**< "US#CA"; null: the application server is asked */
  int64_t check_interval;    /**< seconds, at least 60; 0 means 1800 */
  quillon_log_level log_level;
  int32_t testing_mode;               /**< not 0: the draft channel, loaded anew at every set-up */
  const char* const* allowed_domains; /**< of the in-app web view */
  size_t allowed_domain_count;
} quillon_options;

/** A configured purpose with its present consent, its texts in the user's language ("" where there is none). */
typedef struct quillon_purpose {
  int64_t id;
  const char* name;
  const char* description;
  quillon_consent consent;
  int32_t is_essential;   /**< the user may not decline it */
  int32_t follows_device; /**< the device's tracking setting decides, not the user here */
} quillon_purpose;

/** A configured permission with what the device says now. */
typedef struct quillon_permission {
  const char* key; /**< such as "NSCameraUsageDescription" */
  const char* name;
  const char* description;
  quillon_consent consent;
} quillon_permission;

/** The banner for the user's location, in the user's language. */
typedef struct quillon_banner {
  const char* heading;
  const char* text;   /**< may hold simple HTML */
  const char* accept; /**< captions of the buttons */
  const char* reject;
  const char* privacy_notice_text;
  const char* privacy_notice_link;
  quillon_compliance compliance;
} quillon_banner;

/** Takes the platform's settings; later calls, and one after the first use of the SDK, change nothing. Not 0 on
 * success. */
QUILLON_MUST_USE int32_t quillon_configure(const quillon_platform* platform);

/** @name Set-up and readiness
 * @{ */
/** Starts loading in the background; may be called again. Not 0 when the options are complete. */
int32_t quillon_setup(const quillon_options* options);
quillon_status quillon_get_status(void);
/** Calls back at once on this thread, and then with every later status; replaces an earlier callback. */
void quillon_is_ready(void (*callback)(quillon_status status, void* context), void* context);
void quillon_remove_listeners(void);
/** Waits until nothing is under way, at most so many milliseconds. Not 0 when that is so. For leaving in order. */
int32_t quillon_settle(int64_t milliseconds);
/** The SDK's version, to be given to quillon_free(); null when it is not known. */
char* quillon_sdk_version(void);
void quillon_free(char* text);
/** @} */

/** @name Consents
 * @{ */
/** Not 0 when the application may act on the purpose now; see ConsentSDK::isAllowed(). Fails closed: 0 whenever nobody
 * has consented, or in doubt. Cheap enough for every frame. */
int32_t quillon_is_purpose_allowed(int64_t purpose_id);
/** Not 0 when the device is known to grant the permission now. */
int32_t quillon_is_permission_allowed(const char* key);
/** The status, from memory: what is, not what may be done. Without a configuration it is granted, the default of the
 * compliance types that need no question. */
quillon_consent quillon_get_purpose(int64_t purpose_id);
quillon_consent quillon_get_permission(const char* key);
/** Records the user's choice; durable on return. Not 0 when it was stored. */
int32_t quillon_set_purpose(int64_t purpose_id, quillon_consent consent);
int32_t quillon_set_permission(const char* key, quillon_consent consent);
/** The configured ones in display order. */
void quillon_get_purposes(void (*callback)(const quillon_purpose* const* purposes, size_t count, void* context),
                          void* context);
void quillon_get_permissions(void (*callback)(const quillon_permission* const* permissions, size_t count,
                                              void* context),
                             void* context);
/** The consent-mode signals that follow from the present consents; none when the configuration maps none. */
void quillon_get_consent_mode(void (*callback)(const quillon_signal* signals, size_t count, void* context),
                              void* context);
/** Deletes every stored value: decisions, identity, token. */
void quillon_remove_consents(void);
/** @} */

/** @name Banner
 * @{ */
/** Not 0 when the banner must be shown now, which counts as showing it. */
int32_t quillon_is_banner_due(void);
/** The banner; null when there is none. */
void quillon_get_banner(void (*callback)(const quillon_banner* banner, void* context), void* context);
/** Records the answer for every purpose at once and uploads it. */
void quillon_accept_or_reject(int32_t accept, void (*callback)(int32_t stored, void* context), void* context);
/** @} */

/** @name Screens
 * Shown when the application links a user interface of the SDK; otherwise a warning is logged.
 * @{ */
void quillon_present_banner(void);
void quillon_present_preference_center(void);
void quillon_present_setting_prompt(const char* permission_key);
void quillon_open_link(const char* link);
/** @} */

/** @name Upload and check
 * @{ */
void quillon_upload_pending_consents(void (*callback)(int32_t uploaded, void* context), void* context);
void quillon_check_consents(void (*callback)(void* context), void* context);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
