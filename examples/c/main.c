/* A C application that asks for consent: it sets the SDK up, waits until it is ready, asks when the banner is due (here:
 * a line of text, answered with yes), uploads the answer and tells what is allowed. Exit status 0 when everything went as
 * expected. usage: quillon-c-example SERVER DATA_FOLDER [again] */
#define _POSIX_C_SOURCE 200809L
#include <pthread.h>
#include <stdio.h>
#include <time.h>

#include "quillon/consent.h"

/* Filled by the SDK's callbacks; the main thread waits for changes. */
typedef struct {
  pthread_mutex_t mutex;
  pthread_cond_t changed;
  int answers; /* received so far */
  quillon_status status;
  int fetched; /* whether the SDK had to download the configuration */
  int32_t done;
  int refused; /* purposes that are neither granted nor follow a setting of the device */
} progress;

static int fail(const char* reason) {
  fprintf(stderr, "C host: %s\n", reason);
  return 1;
}

static void answered(progress* p) {
  ++p->answers;
  pthread_cond_signal(&p->changed);
  pthread_mutex_unlock(&p->mutex);
}

static void on_status(quillon_status status, void* context) {
  progress* p = context;
  pthread_mutex_lock(&p->mutex);
  p->status = status;
  if (status == QUILLON_FETCHING) p->fetched = 1;
  answered(p);
}

static void on_done(int32_t done, void* context) {
  progress* p = context;
  pthread_mutex_lock(&p->mutex);
  p->done = done;
  answered(p);
}

static void on_banner(const quillon_banner* banner, void* context) {
  progress* p = context;
  if (banner) printf("%s\n[%s] [%s]\n", banner->heading, banner->accept, banner->reject);
  pthread_mutex_lock(&p->mutex);
  answered(p);
}

static void on_purposes(const quillon_purpose* const* purposes, size_t count, void* context) {
  progress* p = context;
  int refused = 0;
  for (size_t i = 0; i < count; ++i) {
    const int is_granted = purposes[i]->consent == QUILLON_GRANTED;
    printf("%s: %s\n", purposes[i]->name, is_granted ? "granted" : "not granted");
    if (!is_granted && !purposes[i]->follows_device) ++refused;
  }
  pthread_mutex_lock(&p->mutex);
  p->refused = refused;
  answered(p);
}

static void on_signals(const quillon_signal* signals, size_t count, void* context) {
  (void)context;
  for (size_t i = 0; i < count; ++i) printf("signal %s=%s\n", signals[i].name, signals[i].value);
}

static void on_change(const quillon_decision* change, void* context) {
  (void)context;
  if (!change->permission) printf("change purpose %lld by %s\n", (long long)change->purpose_id, change->cause);
}

static void start_measuring(void* context) {
  (void)context;
  printf("measuring\n");
}

static void stop_measuring(void* context) {
  (void)context;
  printf("no longer measuring\n");
}

static void on_explanation(const quillon_banner_explanation* explanation, void* context) {
  (void)context;
  printf("%s\n", explanation->text);
}

static void on_history(const quillon_decision* const* entries, size_t count, int64_t before, int64_t damaged,
                       void* context) {
  progress* p = context;
  for (size_t i = 0; i < count; ++i) {
    printf("history %lld: %s, %s\n", (long long)entries[i]->number, entries[i]->cause, entries[i]->upload);
  }
  if (before != 0 || damaged != 0) printf("and more\n");
  pthread_mutex_lock(&p->mutex);
  answered(p);
}

static void on_receipt(const char* receipt, const char* error, void* context) {
  progress* p = context;
  printf("receipt %.20s\n", receipt ? receipt : error);
  pthread_mutex_lock(&p->mutex);
  answered(p);
}

/* Waits for one more answer, at most 20 seconds. Returns 0 on timeout. */
static int wait_for_answer(progress* p, int* seen) {
  struct timespec limit;
  int late = 0;
  clock_gettime(CLOCK_REALTIME, &limit);
  limit.tv_sec += 20;
  pthread_mutex_lock(&p->mutex);
  while (p->answers == *seen && !late) late = pthread_cond_timedwait(&p->changed, &p->mutex, &limit);
  if (p->answers > *seen) ++*seen;
  pthread_mutex_unlock(&p->mutex);
  return !late;
}

int main(int argc, char** argv) {
  static progress p = {.mutex = PTHREAD_MUTEX_INITIALIZER, .changed = PTHREAD_COND_INITIALIZER};
  const int is_first_run = argc == 3;
  int seen = 0;
  if (argc < 3) return 2;

  quillon_platform platform = {.size = sizeof platform,
                               .application_id = "news-reader",
                               .data_directory = argv[2],
                               .vendor_url = argv[1],
                               .consent_sink = on_signals};
  quillon_options options = {.size = sizeof options,
                             .app_url = argv[1],
                             .cdn_url = argv[1],
                             .tenant_id = "demo-tenant",
                             .app_id = "news-reader",
                             .language_code = "de"};
  if (!quillon_configure(&platform) || !quillon_setup(&options)) return 1;

  quillon_is_ready(on_status, &p);
  while (p.status != QUILLON_READY || seen < 1) {
    if (!wait_for_answer(&p, &seen)) return fail("no configuration could be had");
  }
  quillon_remove_listeners();
  quillon_settle(20000);
  seen = p.answers;
  printf(p.fetched ? "ready\n" : "ready (from cache)\n");
  if (p.fetched != is_first_run) return fail(p.fetched ? "expected the cached configuration" : "expected a download");

  quillon_listening* changes = quillon_listen_to_consents(on_change, &p);
  quillon_listening* measuring = quillon_while_allowed(2, start_measuring, stop_measuring, &p);
  quillon_explain_banner(on_explanation, &p);
  const int is_due = quillon_is_banner_due();
  if (is_due != is_first_run) return fail("the banner's turn is not what was expected");
  if (is_due) {
    quillon_get_banner(on_banner, &p);
    if (!wait_for_answer(&p, &seen)) return fail("there is no banner to show");
    quillon_accept_or_reject(1, on_done, &p);
    if (!wait_for_answer(&p, &seen) || !p.done) return fail("the answer could not be stored");
    quillon_upload_pending_consents(on_done, &p);
    if (!wait_for_answer(&p, &seen) || !p.done) return fail("the answer could not be uploaded");
    printf("uploaded\n");
  }
  quillon_get_purposes(on_purposes, &p);
  if (!wait_for_answer(&p, &seen)) return fail("no purposes came");
  if (p.refused != 0) return fail("an accepted purpose is not granted");
  quillon_settle(20000);
  quillon_get_history(10, 0, on_history, &p);
  if (!wait_for_answer(&p, &seen)) return fail("no history came");
  quillon_get_receipt(NULL, 0, on_receipt, &p);
  if (!wait_for_answer(&p, &seen)) return fail("no answer about a receipt came");
  quillon_end(measuring);
  quillon_end(changes);
  return quillon_is_purpose_allowed(2) ? 0 : fail("purpose 2 is not allowed");
}
