/* Included before everything that is compiled for browsers. The records of the interface hold a
 * time_t of 64 bits; emscripten's C library has one of 32. A record of the C library with times
 * in it has another layout here: of struct stat the members before st_atim are where the library
 * writes them, st_mode and st_size among them; the times and st_ino are not, and a struct
 * timespec must not be handed over. */
#define __DEFINED_time_t
#ifdef __cplusplus
extern "C" {
#endif
typedef long long time_t;
#ifdef __cplusplus
}
#endif
