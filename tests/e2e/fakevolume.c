// Preloaded into the application: tells it about the volume of "/" what a test wants it to hear.
//
// The file that the environment names in OMBREL_FAKE_VOLUME_FILE is read anew at every look. It holds
// "TOTAL AVAILABLE NAME" (bytes, and the volume's label) or "error NUMBER" (an errno).
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <linux/fs.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { blockSize = 512 };

struct Answer {
    int error; // 0: the figures count
    unsigned long long total, available;
    char name[64];
};

static int readAnswer(struct Answer *answer) {
    const char *path = getenv("OMBREL_FAKE_VOLUME_FILE");
    FILE *file = path ? fopen(path, "re") : NULL;
    if (!file)
        return 0;
    char line[256] = "";
    const int read = fgets(line, sizeof line, file) != NULL;
    fclose(file);
    memset(answer, 0, sizeof *answer);
    return read && (sscanf(line, "error %d", &answer->error) == 1 ||
                    sscanf(line, "%llu %llu %63[^\n]", &answer->total, &answer->available, answer->name) == 3);
}

int statvfs(const char *path, struct statvfs *result) {
    struct Answer answer;
    if (strcmp(path, "/") != 0 || !readAnswer(&answer)) {
        int (*real)(const char *, struct statvfs *) = (int (*)(const char *, struct statvfs *))dlsym(RTLD_NEXT, "statvfs");
        return real(path, result);
    }
    if (answer.error) {
        errno = answer.error;
        return -1;
    }
    memset(result, 0, sizeof *result);
    result->f_bsize = result->f_frsize = blockSize;
    result->f_blocks = answer.total / blockSize;
    result->f_bfree = result->f_bavail = answer.available / blockSize;
    return 0;
}

// The same where files have 64-bit offsets anyway.
int statvfs64(const char *path, struct statvfs64 *result) { return statvfs(path, (struct statvfs *)result); }

int ioctl(int fd, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    struct Answer answer;
    if (request == FS_IOC_GETFSLABEL && readAnswer(&answer) && !answer.error) {
        strcpy(argument, answer.name);
        return 0;
    }
    return (int)syscall(SYS_ioctl, fd, request, argument);
}
