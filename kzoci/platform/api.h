/*
 * What makes a function part of the interface of a shared library.
 *
 * The libraries are compiled with hidden visibility: a shared library exports what is
 * declared with KZOCI_API, and nothing else. Also in a program that brings functions of the
 * platform of its own: there the library has to find them.
 */
#ifndef KZOCI_PLATFORM_API_H
#define KZOCI_PLATFORM_API_H

#if defined(__GNUC__)
#define KZOCI_API __attribute__((visibility("default")))
#else
#define KZOCI_API
#endif

#endif
