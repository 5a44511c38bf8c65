/// @file
/// The run-time's C11 time, which Wine's header leaves out.
#pragma once

#include_next <time.h>
struct timespec
{
    time_t tv_sec;
    long tv_nsec;
};
#define TIME_UTC 1
int timespec_get(struct timespec*, int);
