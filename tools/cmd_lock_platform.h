// What "quiltool lock take" needs of the system: waiting for the user to
// interrupt, and the account name (cmd_lock_platform_posix.cpp / _win.cpp).
#ifndef QUILTOOL_TOOLS_CMD_LOCK_PLATFORM_H
#define QUILTOOL_TOOLS_CMD_LOCK_PLATFORM_H

#include <string>

namespace qt {
namespace cmd_lock {
namespace platform {

// Catches the interruptions from now on: SIGINT, SIGTERM and SIGHUP on
// Linux; Ctrl+C, Ctrl+Break, closing the console, logoff and shutdown on
// Windows. False when they cannot be caught.
bool Arm();
// Blocks until one of them arrives after Arm.
void Wait();
// Gives the interruptions back to the system. On Windows a console being
// closed waits for this (a few seconds at most), so that the lock is
// released before the process is ended.
void Disarm();
// Interrupts this process as the user would: SIGINT on Linux, the console
// handler's Ctrl+C on Windows. For tests.
void InterruptSelf();

// The account this process runs as; empty when unknown.
std::wstring AccountName();

}  // namespace platform
}  // namespace cmd_lock
}  // namespace qt

#endif
