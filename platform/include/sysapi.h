/* The device's system library as libvesk uses it: running commands,
 * diagnostics, the uptime clock and small file queries. This is the
 * interface of the vendor's closed library; the build links either the
 * vendor's implementation or the stand-in beside this header. */
#ifndef VESK_SYSAPI_H
#define VESK_SYSAPI_H

#if defined(__GNUC__)
#define SYSAPI_EXPORT __attribute__((visibility("default")))
#define SYSAPI_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define SYSAPI_EXPORT
#define SYSAPI_PRINTF(fmt, args)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Inside the emulated device both record each command line, verbatim, in
 * its journal before running it.
 *
 * Formats a command line and runs it through "/bin/sh -c", waiting for it.
 * Returns 0 when the command exited with status 0, the exit status (or 128
 * plus the signal) when it failed, and -1 when it could not be run. */
SYSAPI_EXPORT int CMD(const char *format, ...) SYSAPI_PRINTF(1, 2);

/* Formats a command line, runs it through "/bin/sh -c" and places what it
 * wrote to standard output in buf: at most size - 1 bytes and a terminator.
 * Output beyond that is read and dropped, so the command never blocks on a
 * full pipe. Result:
 *   -1  the command could not be run (also when the shell reports so, with
 *       exit status 126 or 127); buf is left as it was when nothing started
 *    0  it ran and failed (non-zero exit status or killed by a signal)
 *    1  it ran and exited with status 0, whether or not it printed anything
 * buf holds the captured output in both of the last two cases. */
SYSAPI_EXPORT int sysinteract(char *buf, int size, const char *format, ...) SYSAPI_PRINTF(3, 4);

/* Prints a diagnostic line to standard error. */
SYSAPI_EXPORT void T_PRINTF(const char *format, ...) SYSAPI_PRINTF(1, 2);

/* Appends a line to the system log, /var/log/messages. */
SYSAPI_EXPORT void system_log(int level, const char *text);

/* Fills a record of two 32-bit words, seconds and microseconds of uptime,
 * read from /proc/uptime. */
SYSAPI_EXPORT void x_gettimeofday(void *tv);

/* Number of lines of a text file (a last line without newline counts);
 * 0 when it cannot be read. */
SYSAPI_EXPORT unsigned int getNumOfRecord(const char *path, int zero);

SYSAPI_EXPORT int osapi_is_file_existed(const char *path);
/* Size in bytes, 0 when the file cannot be examined. */
SYSAPI_EXPORT unsigned int osapi_file_size(const char *path);
/* 1 when the process whose number the pid file holds is alive, else 0. */
SYSAPI_EXPORT int osapi_is_proc_pid_existed(const char *pid_file);

#ifdef __cplusplus
}
#endif

#endif
