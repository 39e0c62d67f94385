/* REFGROVE_EXPORT marks the declarations that refgrove.so exports: the
 * library is built with hidden visibility, so only what carries it is
 * reachable from outside, under its plain C name. */
#ifndef REFGROVE_EXPORT_H_
#define REFGROVE_EXPORT_H_

#define REFGROVE_EXPORT __attribute__((visibility("default")))

#endif /* REFGROVE_EXPORT_H_ */
