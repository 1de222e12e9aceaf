/* Included before everything that is compiled for browsers. The records of the interface hold a
 * time_t of 64 bits; emscripten's C library has one of 32. Nothing that is compiled here hands
 * the library a time or takes one from it, so that each may keep its own. */
#define __DEFINED_time_t
#ifdef __cplusplus
extern "C" {
#endif
typedef long long time_t;
#ifdef __cplusplus
}
#endif
