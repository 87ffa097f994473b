// The vesk tool: one file a family (cmd_<family>.cpp), each defining a
// cli::family object named family_<family>. The build collects them.
//
// Conventions every command follows (vesk --help and the man page say the
// same to users):
//   exit 0  an answer, printed on stdout (a 0/1 predicate answers too)
//   exit 1  no answer: the library gave a failure value or a placeholder
//           ("---", "0.0.0.0", "000000000000", "unknown", null, ""); one
//           line on stderr says so and stdout stays empty
//   exit 2  usage: a wrong word count, an unknown command, or input the
//           library would take but misread (a MAC that is no MAC, a date
//           that does not exist), refused before the library is called
// With -j/--json the answer is one JSON value: a string or number, an
// object of named values, or an array of such objects. Keys are the ones
// the text form prints and do not change.
// A command marked changes_device is refused outside an emulated device
// unless --host or VESK_HOST=1 says the host is meant.
#pragma once

#include <span>

namespace cli {

enum exit_code : int { kAnswer = 0, kMiss = 1, kUsage = 2 };

enum command_flags : unsigned { changes_device = 1u };

struct command {
    const char *name;
    // Synopsis: WORD is required, [WORD] optional, "..." any number more;
    // the word counts are checked against it before run is called.
    const char *args;
    const char *help;
    int min_args;
    int (*run)(int argc, char **argv); // argv[0] is the first argument
    unsigned flags = 0;
};

struct family {
    const char *name;
    const char *help;
    std::span<const command> commands;
};

// --- outcomes: each returns the exit code for run to return -------------

// Prints "vesk FAMILY COMMAND: <message>" on stderr; returns kMiss.
[[gnu::format(printf, 1, 2)]] int miss(const char *format, ...);
// The same for input refused before the library is called; returns kUsage.
[[gnu::format(printf, 1, 2)]] int refuse(const char *format, ...);

// A text answer: null, "" and the library's placeholders are misses.
int answer(const char *text);
// A text answer where a placeholder is a real value (the text of address 0):
// only null and "" are misses.
int text(const char *text);
// A list of texts joined by sep, printed as it stands (an array of
// strings in JSON); a placeholder is a miss.
int answer_list(const char *text, char sep);
// A number answer (counts, predicates, values).
int number(long long value);
int number_u(unsigned long long value);
// An action's result: silent success, or a miss naming what failed.
int done(bool ok, const char *what);

// True for null, "" and the library's placeholders.
bool placeholder(const char *text);

// --- records: "key value" lines, or one JSON object ----------------------
// Inside a list each record is one line of values in key order (text), or
// one object of a JSON array.
class record {
public:
    record();
    ~record();
    record(const record &) = delete;
    record &operator=(const record &) = delete;
    record &text(const char *key, const char *value);
    record &number(const char *key, long long value);
    record &number_u(const char *key, unsigned long long value);

private:
    bool first_ = true;
};

class list {
public:
    list();
    ~list();
    list(const list &) = delete;
    list &operator=(const list &) = delete;
};

bool json();

// What the library prints on stdout goes to stderr, but for the commands
// whose answer it is (a hex dump): those call this with true around the call.
void library_output(bool to_user);

// --- arguments: each refuses (message on stderr) and returns false -------

bool parse_i64(const char *text, long long *out, long long min, long long max);
bool parse_int(const char *text, int *out, long long min, long long max);
bool parse_uint(const char *text, unsigned int *out, unsigned long long max = 0xFFFFFFFFu);
bool parse_u64(const char *text, unsigned long long *out);
// Twelve hex digits, with or without colons between the pairs.
bool parse_mac(const char *text, unsigned char mac[6]);
bool is_mac(const char *text);
// Exactly 12 hex digits, no colons.
bool parse_mac12(const char *text);
// Dotted IPv4 address, four decimal fields 0..255.
bool is_ipv4(const char *text);
bool parse_ipv4(const char *text);
// One of the words in choices (null-terminated); its index.
bool parse_choice(const char *text, const char *const *choices, int *out);
// A calendar date YYYY-MM-DD that exists, and a time hh:mm.
bool parse_date(const char *text, int *year, int *month, int *day);
bool parse_clock(const char *text, int *hour, int *minute);

} // namespace cli
