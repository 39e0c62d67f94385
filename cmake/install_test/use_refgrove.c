/* A program that uses the installed C interface: preprocesses the dumps of
 * argv[1] into the new directory argv[2], loads it and prints what it knows
 * about one document and the best hit of a search. Also compiled as C++. */
#include <stdio.h>
#include <sys/stat.h>

#include <refgrove/refgrove.h>

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: use_refgrove DUMP_DIR/ NEW_DATA_DIR/ DID\n");
    return 2;
  }
  if (mkdir(argv[2], 0700) != 0) {
    perror(argv[2]);
    return 1;
  }
  refgrove_preproc_1(argv[1], argv[2]);
  refgrove_load_1(argv[2]);
  int did = 0, year = 0, docs = 0, words = 0, authors = 0;
  const char* key = NULL;
  if (sscanf(argv[3], "%d", &did) != 1 || !refgrove_get_key_1(did, &key) || !refgrove_get_year_1(did, &year)) {
    fprintf(stderr, "no document %s\n", argv[3]);
    return 1;
  }
  refgrove_stats_1(&docs, &words, &authors);
  int best = 0;
  double score = 0;
  const int hits = refgrove_search_1("suffix", 0, 1, &best, &score);
  if (hits < 1) {
    fprintf(stderr, "search failed\n");
    return 1;
  }
  printf("%d: %s %d; %d documents, %d words, %d authors; suffix: %d found, best %d\n", did, key, year, docs, words,
         authors, hits, best);
  return 0;
}
