/* Preprocessing: the text dumps of the citation database into a data
 * directory that refgrove_load_1 reads. */
#ifndef REFGROVE_PREPROCESS_H_
#define REFGROVE_PREPROCESS_H_

#include "refgrove/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Preprocesses the dumps of input directory `in_dir` into data directory `out_dir`
 * (both prefixes to which the file names are appended, so they normally end
 * in "/"), with its messages on the standard streams. Ends the process with
 * status 3 on a dump that does not parse. */
REFGROVE_EXPORT void refgrove_preproc_1(const char* in_dir, const char* out_dir);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_PREPROCESS_H_ */
