/*  One side of the comparison between library(refgrove) and the same
    citation data held as Prolog facts (written by bench/prolog_facts).
    Run in a fresh process per side, by scripts/swipl-bench:

        swipl bench/swipl_bench.pl LOADER DATA DIDS_FILE [REPEAT]

    LOADER is `consult` (DATA: the facts file), `qlf` (DATA: the facts
    compiled to .qlf) or `refgrove` (DATA: a data directory; library(refgrove)
    from the packs in directory $REFGROVE_PACKS when set). DIDS_FILE holds
    bench_dids(List), the documents every side is asked about.

    Prints one line per figure, each starting with "bench ":
        bench load Seconds                 until the data can be queried
        bench rss before|loaded|queried KB VmRSS before loading, after, after the queries
        bench mapped_rss KB                resident pages of the mapped word-data (refgrove)
        bench first Kind Microseconds      the first query of a kind (lazy indexes are built then)
        bench query Kind Ns Solutions Sum  time per DID, best of REPEAT loops, less the
                                           empty loop's; Sum checks both sides found the same
*/

:- initialization(main, main).

main(Argv) :-
    Argv = [Loader, Data, DidsFile|Rest],
    ( Rest = [R] -> atom_number(R, Repeat) ; Repeat = 5 ),
    load_files(DidsFile, [silent(true)]),
    bench_dids(Dids),
    side(Loader, Side),
    prepare(Side),
    garbage_collect,
    report_rss(before),
    get_time(T0),
    load(Loader, Data),
    get_time(T1),
    Load is T1 - T0,
    report([load, Load]),
    garbage_collect,
    report_rss(loaded),
    Dids = [First|_],
    forall(kind(Kind), first_query(Side, Kind, First)),
    forall(kind(Kind), time_queries(Side, Kind, Dids, Repeat)),
    garbage_collect,
    report_rss(queried),
    ( Side == refgrove -> mapped_rss(KB), report([mapped_rss, KB]) ; true ).
main(_) :-
    format(user_error, "usage: swipl bench/swipl_bench.pl consult|qlf|refgrove DATA DIDS_FILE [REPEAT]~n", []),
    halt(2).

side(consult, facts).
side(qlf, facts).
side(refgrove, refgrove).

prepare(facts).
prepare(refgrove) :-
    (   getenv('REFGROVE_PACKS', Packs)
    ->  attach_packs(Packs, [duplicate(replace)])
    ;   true
    ),
    use_module(library(refgrove)),
    set_prolog_flag(verbose, silent).

load(consult, File) :- load_files(File, [silent(true)]).
load(qlf, File) :- load_files(File, [silent(true)]).
load(refgrove, Dir) :- refgrove_load(Dir).

kind(year).
kind(title_word).
kind(cites).
kind(cited_by).
kind(title).
kind(author_docs).

%   query(Kind, Side, Did, Out): every answer of one kind of query. The
%   empty kind dispatches the same way and does nothing, so that its loop
%   time is the overhead to subtract.
query(empty, facts, _, 0).
query(empty, refgrove, _, 0).
query(year, facts, D, Y) :- doc(D, _, Y).
query(year, refgrove, D, Y) :- refgrove_get_year(D, Y).
query(title_word, facts, D, W) :- title_word(D, 0, W).
query(title_word, refgrove, D, W) :- refgrove_get_title_word(D, 0, W).
query(cites, facts, D, C) :- cites(D, C).
query(cites, refgrove, D, C) :- refgrove_cites(D, C).
query(cited_by, facts, D, C) :- cites(C, D).
query(cited_by, refgrove, D, C) :- refgrove_cites(C, D).
query(title, facts, D, Ws) :- findall(W, title_word(D, _, W), Ws).
query(title, refgrove, D, Ws) :- refgrove_title(D, Ws).
%   The documents of the document's first author, each once (an author
%   may be listed twice on one document).
query(author_docs, facts, D, A) :-
    author(D, 0, Name),
    author(A, P, Name),
    \+ ( author(A, Q, Name), Q < P ).
query(author_docs, refgrove, D, A) :- refgrove_get_author_id(D, 0, Id), refgrove_author_document(Id, A).

first_query(Side, Kind, Did) :-
    get_time(T0),
    ignore(query(Kind, Side, Did, _)),
    get_time(T1),
    Us is (T1 - T0) * 1.0e6,
    report([first, Kind, Us]).

time_queries(Side, Kind, AllDids, Repeat) :-
    kind_dids(Kind, AllDids, Dids),
    best_loop(Side, empty, Dids, Repeat, Empty),
    best_loop(Side, Kind, Dids, Repeat, Full),
    length(Dids, N),
    Ns is (Full - Empty) / N * 1.0e9,
    aggregate_all(count, (member(D, Dids), query(Kind, Side, D, _)), Solutions),
    aggregate_all(sum(V), (member(D, Dids), query(Kind, Side, D, O), checksum(O, V)), Sum),
    report([query, Kind, Ns, Solutions, Sum]).

%   The DIDs a kind is timed on: an author's documents are hundreds on
%   average (the authors of the generated data are Zipf-distributed), so
%   that kind takes the first 2,000 DIDs only.
kind_dids(author_docs, Dids, Some) :- !, length(Some, 2000), append(Some, _, Dids).
kind_dids(_, Dids, Dids).

%   Every answer for every DID, by backtracking, as the fastest of Repeat runs.
best_loop(Side, Kind, Dids, Repeat, Best) :-
    findall(S, (between(1, Repeat, _), loop_time(Side, Kind, Dids, S)), Times),
    min_list(Times, Best).

loop_time(Side, Kind, Dids, Seconds) :-
    get_time(T0),
    (   member(D, Dids), query(Kind, Side, D, _), fail
    ;   true
    ),
    get_time(T1),
    Seconds is T1 - T0.

checksum(O, V) :- integer(O), !, V = O.
checksum(O, V) :- is_list(O), !, foldl([W, S0, S]>>(atom_length(W, L), S is S0 + L), O, 0, V).
checksum(O, V) :- atom_length(O, V).

report_rss(When) :- rss(KB), report([rss, When, KB]).

rss(KB) :-
    read_file_to_string('/proc/self/status', Status, []),
    sub_string(Status, Before, _, _, "VmRSS:"),
    sub_string(Status, Before, _, 0, From),
    split_string(From, " \t\n", " \t", [_, Number|_]),
    number_string(KB, Number).

%   Resident kilobytes of the mappings of word-data, which the process
%   holds without having allocated them.
mapped_rss(KB) :-
    read_file_to_string('/proc/self/smaps', Smaps, []),
    split_string(Smaps, "\n", "", Lines),
    mapped_rss(Lines, false, 0, KB).

mapped_rss([], _, KB, KB).
mapped_rss([Line|Lines], InWordData, KB0, KB) :-
    (   mapping_header(Line)
    ->  ( sub_string(Line, _, _, 0, "word-data") -> In = true ; In = false ),
        mapped_rss(Lines, In, KB0, KB)
    ;   InWordData == true, split_string(Line, " ", " ", ["Rss:", Number|_])
    ->  number_string(N, Number),
        KB1 is KB0 + N,
        mapped_rss(Lines, InWordData, KB1, KB)
    ;   mapped_rss(Lines, InWordData, KB0, KB)
    ).

%   "start-end perms offset device inode path": the first line of a mapping.
mapping_header(Line) :-
    split_string(Line, " ", "", [Range|_]),
    sub_string(Range, _, _, _, "-"),
    \+ sub_string(Range, _, _, _, ":").

report(Items) :-
    atomic_list_concat([bench|Items], ' ', Line),
    format("~w~n", [Line]),
    flush_output.
