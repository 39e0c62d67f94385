// The predicates named after the operations of the C interface, as every
// Prolog face offers them (the host binding, the simulated host's toplevel,
// the SWI-Prolog library): each face derives its list from this one table,
// so that a new predicate is one line here plus its code in each face.
//
// REFGROVE_HOST_PREDICATES(X) calls X(name, arity) once per predicate, in
// the order of this list; the comment gives the arguments' modes.
#ifndef REFGROVE_CORE_PREDICATE_TABLE_H_
#define REFGROVE_CORE_PREDICATE_TABLE_H_

#define REFGROVE_HOST_PREDICATES(X)                                    \
  X(refgrove_hello, 0)                                                 \
  X(refgrove_preproc, 2)          /* +InDir, +OutDir */                \
  X(refgrove_load, 1)             /* +Dir */                           \
  X(refgrove_has_word_info, 1)    /* +Did */                           \
  X(refgrove_has_graph_info, 1)   /* +Did */                           \
  X(refgrove_printdoc, 1)         /* +Did */                           \
  X(refgrove_print_author, 1)     /* +AuthorId */                      \
  X(refgrove_last_did, 1)         /* ?N */                             \
  X(refgrove_document_count, 1)   /* ?N */                             \
  X(refgrove_get_nb_authors, 1)   /* ?N */                             \
  X(refgrove_stats, 3)            /* ?Docs, ?Words, ?Authors */        \
  X(refgrove_word_count, 2)       /* +Did, ?N */                       \
  X(refgrove_title_length, 2)     /* +Did, ?N */                       \
  X(refgrove_author_count, 2)     /* +Did, ?N */                       \
  X(refgrove_cite_count, 2)       /* +Did, ?N */                       \
  X(refgrove_get_year, 2)         /* +Did, ?Year */                    \
  X(refgrove_get_author_id, 3)    /* +Did, +I, ?AuthorId */            \
  X(refgrove_get_cite, 4)         /* +Did, +I, ?Cited, ?Gid */         \
  X(refgrove_get_key, 2)          /* +Did, ?Key */                     \
  X(refgrove_get_title_word, 3)   /* +Did, +I, ?Word */                \
  X(refgrove_get_word, 3)         /* +Did, +I, ?Word */                \
  X(refgrove_get_author, 3)       /* +Did, +I, ?Name */                \
  X(refgrove_id2author, 2)        /* +AuthorId, ?Name */               \
  X(refgrove_get_authors, 2)      /* +Did, ?AuthorIds, last first */   \
  X(refgrove_author_distance, 3)  /* +A, +B, ?Distance */

#endif  // REFGROVE_CORE_PREDICATE_TABLE_H_
