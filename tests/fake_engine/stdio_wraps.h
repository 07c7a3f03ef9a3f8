#pragma once

#include <sys/stat.h>

#include <cstdarg>
#include <cstdio>

// What the linker makes of a function of stdio under --wrap: the function itself is __real_..., and
// callers come to __wrap_...

extern "C" {
FILE* __real_fopen(const char* name, const char* mode);
int __real_fclose(FILE* stream);
size_t __real_fread(void* data, size_t size, size_t count, FILE* stream);
size_t __real_fwrite(const void* data, size_t size, size_t count, FILE* stream);
int __real_fflush(FILE* stream);
int __real_fseek(FILE* stream, long offset, int origin);
long __real_ftell(FILE* stream);
int __real_feof(FILE* stream);
int __real_fputc(int character, FILE* stream);
int __real_fputs(const char* text, FILE* stream);
int __real_fgetc(FILE* stream);
char* __real_fgets(char* text, int size, FILE* stream);
int __real_puts(const char* text);
int __real_putchar(int character);
int __real_vfprintf(FILE* stream, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
int __real_vfscanf(FILE* stream, const char* format, va_list arguments)
    __attribute__((format(scanf, 2, 0)));
int __real_mkdir(const char* name, mode_t mode);

FILE* __wrap_fopen(const char* name, const char* mode);
int __wrap_fclose(FILE* stream);
size_t __wrap_fread(void* data, size_t size, size_t count, FILE* stream);
size_t __wrap_fwrite(const void* data, size_t size, size_t count, FILE* stream);
int __wrap_fflush(FILE* stream);
int __wrap_fseek(FILE* stream, long offset, int origin);
long __wrap_ftell(FILE* stream);
int __wrap_feof(FILE* stream);
int __wrap_fputc(int character, FILE* stream);
int __wrap_fputs(const char* text, FILE* stream);
int __wrap_fgetc(FILE* stream);
char* __wrap_fgets(char* text, int size, FILE* stream);
int __wrap_vfprintf(FILE* stream, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
int __wrap_vfscanf(FILE* stream, const char* format, va_list arguments)
    __attribute__((format(scanf, 2, 0)));
int __wrap___isoc99_vfscanf(FILE* stream, const char* format, va_list arguments)
    __attribute__((format(scanf, 2, 0)));
int __wrap_fprintf(FILE* stream, const char* format, ...) __attribute__((format(printf, 2, 3)));
int __wrap_fscanf(FILE* stream, const char* format, ...) __attribute__((format(scanf, 2, 3)));
int __wrap___isoc99_fscanf(FILE* stream, const char* format, ...)
    __attribute__((format(scanf, 2, 3)));
int __wrap_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
int __wrap_puts(const char* text);
int __wrap_putchar(int character);
int __wrap_mkdir(const char* name, mode_t mode);
}
