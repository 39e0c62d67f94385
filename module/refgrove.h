/* The plain C interface of refgrove.so: loading a data directory, the query
 * operations and printing (core/refgrove.h), and preprocessing text dumps
 * into a data directory (preproc/refgrove_preproc.h). Installed as
 * <refgrove/refgrove.h>, with the two headers beside it in the same
 * folders, which the quoted includes find from here. */
#ifndef REFGROVE_MODULE_REFGROVE_H_
#define REFGROVE_MODULE_REFGROVE_H_

#include "core/refgrove.h"
#include "preproc/refgrove_preproc.h"

#endif /* REFGROVE_MODULE_REFGROVE_H_ */
