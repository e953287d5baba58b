/* Loaded before the program: kills it in the middle of its n-th change to files, as KILL_AT says.
 * Of a write that is the n-th, half is done. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <unistd.h>

static int is_due(void) {
  static int left = -1;
  const char* const text = getenv("KILL_AT");
  if (left < 0) left = text == NULL ? 0 : atoi(text);
  return left > 0 && --left == 0;
}

static void die(void) { kill(getpid(), SIGKILL); }

ssize_t write(int file, const void* bytes, size_t count) {
  const int due = is_due();
  const ssize_t done = syscall(SYS_write, file, bytes, due ? count / 2 : count);
  if (due) die();
  return done;
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  const int due = is_due();
  const ssize_t done = syscall(SYS_pwrite64, file, bytes, due ? count / 2 : count, offset);
  if (due) die();
  return done;
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
  return pwrite(file, bytes, count, offset);
}

int fsync(int file) {
  if (is_due()) die();
  return (int)syscall(SYS_fsync, file);
}

int linkat(int from_folder, const char* from, int to_folder, const char* to, int flags) {
  if (is_due()) die();
  return (int)syscall(SYS_linkat, from_folder, from, to_folder, to, flags);
}

int rename(const char* from, const char* to) {
  if (is_due()) die();
  return (int)syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

int unlink(const char* path) {
  if (is_due()) die();
  return (int)syscall(SYS_unlinkat, AT_FDCWD, path, 0);
}
