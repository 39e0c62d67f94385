// The module's entry points and foreign predicates, as the host engine calls
// them: each predicate takes the machine, reads its arguments from the
// argument registers A1 .. A4 and returns 1 for success, 0 for failure.
#ifndef REFGROVE_MODULE_PREDICATES_H_
#define REFGROVE_MODULE_PREDICATES_H_

#include "module/host_machine.h"

#define REFGROVE_PREDICATE extern "C" __attribute__((visibility("default"))) int

// Called once by the host when it loads the module.
REFGROVE_PREDICATE lumox_module_init_appl_refgrove_refgrove(void);
// Prints the module's start lines.
extern "C" __attribute__((visibility("default"))) void init_refgrove(void);

REFGROVE_PREDICATE refgrove_hello(LumoxMachine* m);                   // arity 0
REFGROVE_PREDICATE refgrove_preproc(LumoxMachine* m);                 // +InDir, +OutDir
REFGROVE_PREDICATE refgrove_load(LumoxMachine* m);                    // +Dir
REFGROVE_PREDICATE refgrove_has_word_info(LumoxMachine* m);           // +Did
REFGROVE_PREDICATE refgrove_has_graph_info(LumoxMachine* m);          // +Did
REFGROVE_PREDICATE refgrove_printdoc(LumoxMachine* m);                // +Did
REFGROVE_PREDICATE refgrove_print_author(LumoxMachine* m);            // +AuthorId
REFGROVE_PREDICATE refgrove_last_did(LumoxMachine* m);                // ?N
REFGROVE_PREDICATE refgrove_document_count(LumoxMachine* m);          // ?N
REFGROVE_PREDICATE refgrove_get_nb_authors(LumoxMachine* m);          // ?N
REFGROVE_PREDICATE refgrove_stats(LumoxMachine* m);                   // ?Docs, ?Words, ?Authors
REFGROVE_PREDICATE refgrove_word_count(LumoxMachine* m);              // +Did, ?N
REFGROVE_PREDICATE refgrove_title_length(LumoxMachine* m);            // +Did, ?N
REFGROVE_PREDICATE refgrove_author_count(LumoxMachine* m);            // +Did, ?N
REFGROVE_PREDICATE refgrove_cite_count(LumoxMachine* m);              // +Did, ?N
REFGROVE_PREDICATE refgrove_get_year(LumoxMachine* m);                // +Did, ?Year
REFGROVE_PREDICATE refgrove_get_author_id(LumoxMachine* m);           // +Did, +I, ?Id
REFGROVE_PREDICATE refgrove_get_cite(LumoxMachine* m);                // +Did, +I, ?Cited, ?Gid
REFGROVE_PREDICATE refgrove_get_key(LumoxMachine* m);                 // +Did, ?Key
REFGROVE_PREDICATE refgrove_get_title_word(LumoxMachine* m);          // +Did, +I, ?Word
REFGROVE_PREDICATE refgrove_get_word(LumoxMachine* m);                // +Did, +I, ?Word
REFGROVE_PREDICATE refgrove_get_author(LumoxMachine* m);              // +Did, +I, ?Name
REFGROVE_PREDICATE refgrove_id2author(LumoxMachine* m);               // +AuthorId, ?Name
REFGROVE_PREDICATE refgrove_get_authors(LumoxMachine* m);             // +Did, ?List
REFGROVE_PREDICATE refgrove_author_distance(LumoxMachine* m);         // +A, +B, ?D

#endif  // REFGROVE_MODULE_PREDICATES_H_
