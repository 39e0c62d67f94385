/* Preprocessing in the plain C interface of refgrove.so (module/refgrove.h
 * gathers the whole interface). */
#ifndef REFGROVE_PREPROC_REFGROVE_PREPROC_H_
#define REFGROVE_PREPROC_REFGROVE_PREPROC_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Preprocesses the dumps of input directory `a` into data directory `b`
 * (both prefixes to which the file names are appended, so they normally end
 * in "/"), with its messages on the standard streams. Ends the process with
 * status 3 on a dump that does not parse. */
__attribute__((visibility("default"))) void refgrove_preproc_1(const char* a, const char* b);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_PREPROC_REFGROVE_PREPROC_H_ */
