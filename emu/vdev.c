/* The emulated device's runner: emu/vdev builds it on first use and execs it.
 * It makes the namespaces and the device's root with system calls of its
 * own, so a device starts in a few milliseconds; emu/vdev's header comment
 * says what the device holds.
 *
 * The host stays untouched: everything happens after unshare() of a user
 * namespace (refused when the host allows none, so that root never acts
 * on the host's mounts or network) together with mount, network, UTS, IPC
 * and PID namespaces, and the command runs only after pivot_root into the
 * new root. Every step that the device needs is checked; a failed one ends
 * the run before the command starts. */
#define _GNU_SOURCE
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <net/if.h>
#include <sched.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#define NR "/mnt"            /* the new root while it is built */
#define V NR "/run/vdev"     /* the device's own state, /run/vdev inside */
#define MAX_KEEP 64

static const char *const kDevicePath = "/run/vdev/emu/tools:/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

/* Ends the run with "vdev: WHAT: the system call's error". */
static void die(const char *what, ...)
{
    int err = errno;
    va_list ap;
    va_start(ap, what);
    fputs("vdev: ", stderr);
    vfprintf(stderr, what, ap);
    fprintf(stderr, ": %s\n", strerror(err));
    va_end(ap);
    exit(2);
}

static void fail(const char *what)
{
    fprintf(stderr, "vdev: %s\n", what);
    exit(2);
}

static char *joined(const char *a, const char *b)
{
    size_t la = strlen(a), lb = strlen(b);
    char *s = malloc(la + lb + 1);
    if (!s)
        fail("out of memory");
    memcpy(s, a, la);
    memcpy(s + la, b, lb + 1);
    return s;
}

/* An absolute path with links resolved, as readlink -f gives it. */
static char *resolved(const char *path)
{
    char *r = realpath(path, NULL);
    if (r)
        return r;
    if (path[0] == '/')
        return joined(path, "");
    char cwd[PATH_MAX];
    if (!getcwd(cwd, sizeof cwd))
        die("getcwd");
    char *slash = joined(cwd, "/"), *abs = joined(slash, path);
    free(slash);
    return abs;
}

static void write_file(const char *path, const char *text)
{
    int fd = open(path, O_WRONLY | O_CLOEXEC);
    if (fd < 0 || write(fd, text, strlen(text)) != (ssize_t)strlen(text))
        die("write %s", path);
    close(fd);
}

static void do_mount(const char *src, const char *dst, const char *type, unsigned long flags, const char *data)
{
    if (mount(src, dst, type, flags, data) != 0)
        die("mount %s on %s", src ? src : type, dst);
}

static void make_dir(const char *path, mode_t mode)
{
    if (mkdir(path, mode) != 0 && errno != EEXIST)
        die("mkdir %s", path);
}

/* mkdir -p */
static void make_dirs(const char *path, mode_t mode)
{
    char buf[PATH_MAX];
    if (snprintf(buf, sizeof buf, "%s", path) >= (int)sizeof buf)
        die("path too long: %s", path);
    for (char *p = buf + 1; *p; p++) {
        if (*p == '/') {
            *p = '\0';
            make_dir(buf, mode);
            *p = '/';
        }
    }
    make_dir(buf, mode);
}

static void link_to(const char *target, const char *dir, const char *name)
{
    char path[PATH_MAX];
    snprintf(path, sizeof path, "%s/%s", dir, name);
    if (symlink(target, path) != 0)
        die("symlink %s", path);
}

static int all_digits(const char *s)
{
    for (; *s; s++)
        if (*s < '0' || *s > '9')
            return 0;
    return 1;
}

/* A link at dst with the target of the link at src. */
static void copy_link(const char *src, const char *dst)
{
    char target[PATH_MAX];
    ssize_t n = readlink(src, target, sizeof target - 1);
    if (n < 0)
        die("readlink %s", src);
    target[n] = '\0';
    if (symlink(target, dst) != 0)
        die("symlink %s", dst);
}

/* Every name of dir but . and .., one callback each. */
static void each_entry(const char *dir, void (*fn)(const char *dir, const struct dirent *e, void *arg), void *arg)
{
    DIR *d = opendir(dir);
    if (!d)
        die("opendir %s", dir);
    for (struct dirent *e; (e = readdir(d));) {
        if (strcmp(e->d_name, ".") != 0 && strcmp(e->d_name, "..") != 0)
            fn(dir, e, arg);
    }
    closedir(d);
}

/* The host's top-level directories, bound at their place; its top-level
 * links copied. The device's own directories are made fresh. */
static void host_entry(const char *dir, const struct dirent *e, void *arg)
{
    (void)arg;
    static const char *const own[] = {"proc", "dev", "sys", "tmp", "var", "storage", "mnt", "run", "etc",
                                      "lost+found", "old_root"};
    for (size_t i = 0; i < sizeof own / sizeof own[0]; i++)
        if (strcmp(e->d_name, own[i]) == 0)
            return;
    char src[PATH_MAX], dst[PATH_MAX];
    snprintf(src, sizeof src, "%s%s", dir, e->d_name);
    snprintf(dst, sizeof dst, NR "/%s", e->d_name);
    struct stat st;
    if (lstat(src, &st) != 0)
        return;
    if (S_ISLNK(st.st_mode)) {
        copy_link(src, dst);
    } else if (S_ISDIR(st.st_mode)) {
        make_dir(dst, 0755);
        do_mount(src, dst, NULL, MS_BIND | MS_REC, NULL);
    }
}

/* /proc: links to the kernel's entries, not the per-process ones; /proc/net
 * is a directory so that single files in it can be emulated. */
static void proc_entry(const char *dir, const struct dirent *e, void *arg)
{
    (void)dir;
    (void)arg;
    if (all_digits(e->d_name) || strcmp(e->d_name, "net") == 0)
        return;
    char target[PATH_MAX];
    snprintf(target, sizeof target, "/run/vdev/realproc/%s", e->d_name);
    link_to(target, NR "/proc", e->d_name);
}

static void proc_net_entry(const char *dir, const struct dirent *e, void *arg)
{
    (void)dir;
    (void)arg;
    char target[PATH_MAX];
    snprintf(target, sizeof target, "/run/vdev/realproc/self/net/%s", e->d_name);
    link_to(target, NR "/proc/net", e->d_name);
}

/* The stand-in tools, as links in the upper layer over /usr/sbin. */
static void tool_entry(const char *dir, const struct dirent *e, void *arg)
{
    (void)arg;
    char path[PATH_MAX], target[PATH_MAX];
    snprintf(path, sizeof path, "%s/%s", dir, e->d_name);
    struct stat st;
    if (stat(path, &st) != 0 || !S_ISREG(st.st_mode) || access(path, X_OK) != 0)
        return;
    snprintf(target, sizeof target, "/run/vdev/emu/tools/%s", e->d_name);
    link_to(target, V "/ovl/sbin/up", e->d_name);
}

/* cp -a --remove-destination SRC/. DST: the scenario's files over the root. */
static void copy_tree(const char *src, const char *dst);

struct copy_arg {
    const char *dst;
};

static void copy_entry(const char *dir, const struct dirent *e, void *arg)
{
    const struct copy_arg *c = arg;
    char from[PATH_MAX], to[PATH_MAX];
    snprintf(from, sizeof from, "%s/%s", dir, e->d_name);
    snprintf(to, sizeof to, "%s/%s", c->dst, e->d_name);
    struct stat st;
    if (lstat(from, &st) != 0)
        die("stat %s", from);
    if (S_ISDIR(st.st_mode)) {
        struct stat dst_st;
        if (lstat(to, &dst_st) == 0 && !S_ISDIR(dst_st.st_mode) && unlink(to) != 0)
            die("unlink %s", to);
        make_dir(to, st.st_mode & 07777);
        copy_tree(from, to);
        chmod(to, st.st_mode & 07777);
        return;
    }
    if (unlink(to) != 0 && errno != ENOENT)
        die("unlink %s", to);
    if (S_ISLNK(st.st_mode)) {
        copy_link(from, to);
        return;
    }
    if (!S_ISREG(st.st_mode))
        return;
    int in = open(from, O_RDONLY | O_CLOEXEC);
    int out = open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, st.st_mode & 07777);
    if (in < 0 || out < 0)
        die("copy %s to %s", from, to);
    char buf[65536];
    for (ssize_t n; (n = read(in, buf, sizeof buf)) != 0;) {
        if (n < 0 || write(out, buf, (size_t)n) != n)
            die("copy %s to %s", from, to);
    }
    fchmod(out, st.st_mode & 07777);
    const struct timespec times[2] = {st.st_atim, st.st_mtim};
    futimens(out, times);
    close(in);
    close(out);
}

static void copy_tree(const char *src, const char *dst)
{
    struct copy_arg c = {dst};
    each_entry(src, copy_entry, &c);
}

/* Runs argv and waits; its exit status, 127 when it could not start. */
static int run(char *const argv[], int out_fd)
{
    pid_t pid = fork();
    if (pid < 0)
        die("fork");
    if (pid == 0) {
        if (out_fd >= 0)
            dup2(out_fd, STDOUT_FILENO);
        execv(argv[0], argv);
        _exit(127);
    }
    int status;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR)
            die("waitpid");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/* Makes path an empty file. */
static void empty_file(const char *path)
{
    int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        die("create %s", path);
    close(fd);
}

static void loopback_up(void)
{
    int s = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    struct ifreq ifr;
    memset(&ifr, 0, sizeof ifr);
    strcpy(ifr.ifr_name, "lo");
    if (s < 0 || ioctl(s, SIOCGIFFLAGS, &ifr) != 0)
        die("lo");
    ifr.ifr_flags |= IFF_UP;
    if (ioctl(s, SIOCSIFFLAGS, &ifr) != 0)
        die("lo up");
    close(s);
}

struct device {
    const char *emu, *scenario, *cwd;
    char *keep[MAX_KEEP];
    int nkeep;
    int pid_links;
};

/* LeakSanitizer reads /proc/PID/task of the process it checks. /proc/1 (the
 * command) is always there; with --pid-links the device's process numbers
 * stay below kPidLinks and each has its link. */
enum { kPidLinks = 1024 };
static void proc_pid_links(int all)
{
    link_to("/run/vdev/realproc/1", NR "/proc", "1");
    if (!all)
        return;
    int fd = open(V "/realproc/sys/kernel/pid_max", O_WRONLY | O_CLOEXEC);
    int capped = fd >= 0 && write(fd, "1024", 4) == 4;
    if (fd >= 0)
        close(fd);
    if (!capped)
        return; /* a kernel without its own limit a namespace: links would not cover every process */
    for (int pid = 2; pid <= kPidLinks; pid++) {
        char target[64], name[16];
        snprintf(target, sizeof target, "/run/vdev/realproc/%d", pid);
        snprintf(name, sizeof name, "%d", pid);
        link_to(target, NR "/proc", name);
    }
}

static int is_device_dir(const char *path)
{
    static const char *const dirs[] = {"/tmp/", "/var/", "/mnt/", "/storage/", "/run/"};
    for (size_t i = 0; i < sizeof dirs / sizeof dirs[0]; i++)
        if (strncmp(path, dirs[i], strlen(dirs[i])) == 0)
            return 1;
    return 0;
}

/* Pid 1 of the new namespaces: the device's root, then the command. */
static void build_device(const struct device *d)
{
    do_mount("vdev-root", NR, "tmpfs", 0, "mode=0755");
    static const char *const dirs[] = {"proc", "dev", "sys", "tmp", "var", "var/run", "var/log", "var/lock",
                                       "storage", "mnt", "run", "run/vdev", "etc"};
    for (size_t i = 0; i < sizeof dirs / sizeof dirs[0]; i++) {
        char path[PATH_MAX];
        snprintf(path, sizeof path, NR "/%s", dirs[i]);
        make_dir(path, 0755);
    }
    chmod(NR "/tmp", 01777);
    each_entry("/", host_entry, NULL);

    make_dirs(V "/realproc", 0755);
    make_dirs(V "/ovl/etc/up", 0755);
    make_dirs(V "/ovl/etc/work", 0755);
    make_dirs(V "/ovl/sbin/up", 0755);
    make_dirs(V "/ovl/sbin/work", 0755);
    /* The PID namespace's own procfs: /proc/self and /proc/1 are the device's. */
    if (mount("vdev-proc", V "/realproc", "proc", 0, NULL) != 0)
        do_mount("/proc", V "/realproc", NULL, MS_BIND | MS_REC, NULL);
    do_mount("vdev-etc", NR "/etc", "overlay", 0, "lowerdir=/etc,upperdir=" V "/ovl/etc/up,workdir=" V "/ovl/etc/work");

    each_entry("/proc", proc_entry, NULL);
    proc_pid_links(d->pid_links);
    make_dir(NR "/proc/net", 0755);
    each_entry("/proc/self/net", proc_net_entry, NULL);

    /* /dev: the harmless character devices only. */
    static const char *const nodes[] = {"null", "zero", "full", "random", "urandom", "tty"};
    for (size_t i = 0; i < sizeof nodes / sizeof nodes[0]; i++) {
        char src[64], dst[64];
        snprintf(src, sizeof src, "/dev/%s", nodes[i]);
        snprintf(dst, sizeof dst, NR "/dev/%s", nodes[i]);
        if (access(src, F_OK) != 0)
            continue;
        int fd = open(dst, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        if (fd < 0)
            die("create %s", dst);
        close(fd);
        do_mount(src, dst, NULL, MS_BIND, NULL);
    }
    link_to("/proc/self/fd", NR "/dev", "fd");
    link_to("/proc/self/fd/0", NR "/dev", "stdin");
    link_to("/proc/self/fd/1", NR "/dev", "stdout");
    link_to("/proc/self/fd/2", NR "/dev", "stderr");
    make_dir(NR "/dev/shm", 01777);
    chmod(NR "/dev/shm", 01777);
    make_dir(NR "/dev/pts", 0755);

    if (mount("vdev-sys", NR "/sys", "sysfs", 0, NULL) != 0)
        do_mount("/sys", NR "/sys", NULL, MS_BIND | MS_REC, NULL);

    /* The stand-in tools: on PATH, and under /usr/sbin for absolute paths. */
    link_to(d->emu, V, "emu");
    struct stat st;
    if (stat(NR "/usr/sbin", &st) == 0 && S_ISDIR(st.st_mode)) {
        char tools[PATH_MAX];
        snprintf(tools, sizeof tools, "%s/tools", d->emu);
        each_entry(tools, tool_entry, NULL);
        do_mount("vdev-sbin", NR "/usr/sbin", "overlay", 0,
                 "lowerdir=/usr/sbin,upperdir=" V "/ovl/sbin/up,workdir=" V "/ovl/sbin/work");
    }

    /* Paths that must stay reachable where they are (the build tree, the cwd). */
    for (int i = 0; i < d->nkeep; i++) {
        if (!is_device_dir(d->keep[i]))
            continue;
        char dst[PATH_MAX];
        snprintf(dst, sizeof dst, NR "%s", d->keep[i]);
        make_dirs(dst, 0755);
        do_mount(d->keep[i], dst, NULL, MS_BIND | MS_REC, NULL);
    }

    empty_file(V "/journal");
    empty_file(V "/inside");

    if (chdir(NR) != 0 || mkdir(".oldroot", 0700) != 0 || syscall(SYS_pivot_root, ".", ".oldroot") != 0 ||
        chdir("/") != 0 || umount2("/.oldroot", MNT_DETACH) != 0 || rmdir("/.oldroot") != 0)
        die("pivot_root");
}

/* Inside the new root: the device's name, its loopback, the scenario. */
static void start_device(const struct device *d)
{
    const char *tz = getenv("TZ");
    if (setenv("TZ_HOST", tz ? tz : "", 1) != 0 || unsetenv("TZ") != 0 || setenv("VDEV", "1", 1) != 0 ||
        setenv("PATH", kDevicePath, 1) != 0 || setenv("VDEV_SCENARIO", d->scenario, 1) != 0)
        die("environment");
    if (sethostname("vdev", 4) != 0)
        die("hostname");
    loopback_up();

    char path[PATH_MAX];
    struct stat st;
    snprintf(path, sizeof path, "%s/root", d->scenario);
    if (stat(path, &st) == 0 && S_ISDIR(st.st_mode))
        copy_tree(path, "");
    snprintf(path, sizeof path, "%s/setup", d->scenario);
    if (access(path, X_OK) == 0) {
        int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        char *argv[] = {path, NULL};
        int status = run(argv, null);
        if (status != 0) {
            fprintf(stderr, "vdev: the scenario's setup %s failed (%d)\n", path, status);
            exit(2);
        }
        close(null);
    }
    empty_file("/run/vdev/journal");
    if (chdir(d->cwd) != 0 && chdir("/") != 0)
        die("chdir /");
}

/* The path of the command as the shell would find it, or NULL. */
static char *find_command(const char *name)
{
    if (strchr(name, '/'))
        return access(name, F_OK) == 0 ? joined(name, "") : NULL;
    const char *path = getenv("PATH");
    for (const char *p = path ? path : ""; *p;) {
        const char *end = strchrnul(p, ':');
        char cand[PATH_MAX];
        snprintf(cand, sizeof cand, "%.*s/%s", (int)(end - p), p, name);
        if (end > p && access(cand, X_OK) == 0)
            return joined(cand, "");
        p = *end ? end + 1 : end;
    }
    return NULL;
}

int main(int argc, char **argv)
{
    struct device d = {0};
    int i = 1;
    /* The runner lives in EMU/.bin/. */
    d.emu = resolved("/proc/self/exe");
    char *slash = strrchr(d.emu, '/');
    *slash = '\0';
    slash = strrchr(d.emu, '/');
    *slash = '\0';
    d.scenario = joined(d.emu, "/scenarios/default");
    for (; i < argc; i++) {
        if (strcmp(argv[i], "--scenario") == 0 && i + 1 < argc) {
            d.scenario = resolved(argv[++i]);
        } else if (strcmp(argv[i], "--keep") == 0 && i + 1 < argc) {
            if (d.nkeep >= MAX_KEEP - 3)
                fail("too many --keep");
            d.keep[d.nkeep++] = resolved(argv[++i]);
        } else if (strcmp(argv[i], "--pid-links") == 0) {
            d.pid_links = 1;
        } else if (strcmp(argv[i], "--") == 0) {
            i++;
            break;
        } else {
            break;
        }
    }
    if (i >= argc)
        fail("no command");
    const char *inside = getenv("VDEV");
    if (inside && strcmp(inside, "1") == 0)
        fail("already inside an emulated device");

    char *cmd = find_command(argv[i]);
    if (cmd) {
        char *dir = resolved(cmd);
        *strrchr(dir, '/') = '\0';
        d.keep[d.nkeep++] = *dir ? dir : joined("/", "");
    }
    char cwd[PATH_MAX];
    if (!getcwd(cwd, sizeof cwd))
        die("getcwd");
    d.cwd = joined(cwd, "");
    d.keep[d.nkeep++] = joined(cwd, "");
    d.keep[d.nkeep++] = joined(d.emu, "");

    /* A user namespace is required: without one, root would change the host.
     * All namespaces come in one call, so a refusal leaves none made. */
    uid_t uid = geteuid();
    gid_t gid = getegid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWPID) != 0)
        fail("this host does not allow user namespaces; refusing to run");
    char map[64];
    write_file("/proc/self/setgroups", "deny");
    snprintf(map, sizeof map, "0 %u 1", (unsigned)uid);
    write_file("/proc/self/uid_map", map);
    snprintf(map, sizeof map, "0 %u 1", (unsigned)gid);
    write_file("/proc/self/gid_map", map);
    do_mount("none", "/", NULL, MS_REC | MS_PRIVATE, NULL);

    fflush(NULL);
    pid_t child = fork();
    if (child < 0)
        die("fork");
    if (child == 0) {
        /* The device goes with its runner, whoever ends that. */
        if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0)
            _exit(2);
        build_device(&d);
        start_device(&d);
        execvp(argv[i], argv + i);
        int err = errno;
        fprintf(stderr, "vdev: %s: %s\n", argv[i], strerror(err));
        _exit(err == ENOENT ? 127 : 126);
    }
    /* Like unshare --fork: wait, and end as the device's pid 1 ended. */
    signal(SIGINT, SIG_IGN);
    signal(SIGTERM, SIG_IGN);
    int status;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            die("waitpid");
    if (WIFSIGNALED(status)) {
        signal(WTERMSIG(status), SIG_DFL);
        kill(getpid(), WTERMSIG(status));
        return 128 + WTERMSIG(status);
    }
    return WEXITSTATUS(status);
}
