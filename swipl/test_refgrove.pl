% Tests of library(refgrove) on the sample dumps, preprocessed by the
% library itself into a temporary directory. Run with the pack attached:
%   swipl -g "attach_packs('<build>/swipl/pack'), consult('test_refgrove.pl'), run_tests" -t halt

:- use_module(library(plunit)).
:- use_module(library(refgrove)).
:- use_module(library(filesex)).
:- use_module(library(lists)).
:- use_module(library(apply)).

:- dynamic data_dir/1, heard/1.

sample_dir(Dir) :-
    (   getenv('REFGROVE_SAMPLE_DIR', Dir)
    ->  true
    ;   source_file(sample_dir(_), File),
        file_directory_name(File, Here),
        atom_concat(Here, '/../data/sample/', Dir)
    ).

% A temporary directory as a prefix ending in "/".
temp_prefix(Prefix) :-
    tmp_file(refgrove, Dir),
    make_directory(Dir),
    atom_concat(Dir, '/', Prefix).

remove_prefix(Prefix) :-
    atom_concat(Dir, '/', Prefix),
    delete_directory_and_contents(Dir).

% Loads the sample (preprocessed once) with the messages silenced.
load_sample :-
    (   data_dir(Dir)
    ->  true
    ;   temp_prefix(Dir),
        sample_dir(In),
        silently(refgrove_preproc(In, Dir)),
        assertz(data_dir(Dir))
    ),
    silently(refgrove_load(Dir)).

silently(Goal) :-
    setup_call_cleanup(set_prolog_flag(verbose, silent), Goal, set_prolog_flag(verbose, normal)).

% Four threads call Round over and over while the main thread calls
% Reload(K) for K = 1, 2, ...: at least Times times, and on until every
% thread has finished a round, so that each takes part however busy the
% machine is. Statuses are the threads' exit statuses: true, or false
% after the first round that failed.
:- meta_predicate rounds_during_reloads(0, 1, +, -).
rounds_during_reloads(Round, Reload, Times, Statuses) :-
    setup_call_cleanup(
        message_queue_create(Queue),
        ( findall(T, (between(1, 4, _), thread_create(rounds(Round, Queue, first), T, [])), Threads),
          reload_until_every_round(Reload, 1, Times, Queue, 4),
          thread_send_message(Queue, stop),
          maplist(thread_join, Threads, Statuses) ),
        message_queue_destroy(Queue)).

% A thread tells the queue after its first round (failed or not), and
% stops when the main thread says so.
rounds(Round, Queue, Turn) :-
    (   thread_peek_message(Queue, stop)
    ->  true
    ;   (   call(Round)
        ->  Ok = true
        ;   Ok = false
        ),
        (   Turn == first
        ->  thread_send_message(Queue, round_done)
        ;   true
        ),
        Ok == true,
        rounds(Round, Queue, next)
    ).

reload_until_every_round(Reload, K, Times, Queue, Waiting) :-
    (   K > Times, Waiting =:= 0
    ->  true
    ;   call(Reload, K),
        count_rounds_done(Queue, Waiting, Left),
        K1 is K + 1,
        reload_until_every_round(Reload, K1, Times, Queue, Left)
    ).

count_rounds_done(Queue, Waiting, Left) :-
    (   thread_get_message(Queue, round_done, [timeout(0)])
    ->  Waiting1 is Waiting - 1,
        count_rounds_done(Queue, Waiting1, Left)
    ;   Left = Waiting
    ).

% Writes an input directory of four dumps: Graph is the graph dump's text,
% the word dumps hold Words.
write_dumps(Prefix, Graph, Words) :-
    atom_concat(Prefix, 'graph-data-aug-2002.txt', GraphFile),
    setup_call_cleanup(open(GraphFile, write, G, [encoding(octet)]), format(G, '~s', [Graph]), close(G)),
    forall(member(N, [1, 2, 3]),
           ( format(atom(WordFile), '~wword-data~w-mar-2002.txt', [Prefix, N]),
             setup_call_cleanup(open(WordFile, write, W, [encoding(octet)]),
                                format(W, '~s', [Words]), close(W)) )).

cleanup_all :-
    forall(retract(data_dir(Dir)), remove_prefix(Dir)).

:- begin_tests(refgrove_before_load).

% Runs first: nothing is loaded yet, and every query says so.
test(queries_need_a_data_set, Answered == []) :-
    findall(G-E, ( member(G, [ refgrove_get_year(107, _), refgrove_printdoc(107), refgrove_print_author(1),
                              refgrove_stats(_, _, _), refgrove_last_did(_), refgrove_has_word_info(1),
                              refgrove_cites(_, _), refgrove_document(_), refgrove_title(107, _),
                              refgrove_author_named('a. lee', _) ]),
                   catch((G, E = answered), E, true),
                   E \= error(existence_error(refgrove_data_set, loaded), _) ), Answered),
    catch(refgrove_get_year(107, _), Error, true),
    message_text(Error, Message),
    assertion(Message == "refgrove: no data set is loaded (load one with refgrove_load/1)").

:- end_tests(refgrove_before_load).

% The text print_message/2 prints for Error, without its line end.
message_text(Error, Message) :-
    '$messages':translate_message(Error, Lines, []),
    with_output_to(string(Text), print_message_lines(current_output, '', Lines)),
    split_string(Text, "", "\n", [Message]).

:- begin_tests(refgrove_documentation).

% help/1 shows the mode line of every exported predicate: "name(" or, for
% arity 0, "name is".
test(help_knows_every_predicate, Undocumented == []) :-
    module_property(refgrove, exports(Exports)),
    findall(Name/Arity, ( member(Name/Arity, Exports),
                          ( Arity =:= 0 -> After = " is" ; After = "(" ),
                          atom_concat(Name, After, ModeLine),
                          with_output_to(string(Help), help(Name/Arity)),
                          \+ sub_string(Help, _, _, _, ModeLine) ), Undocumented).

:- end_tests(refgrove_documentation).

:- begin_tests(refgrove_answers, [setup(load_sample)]).

% The host predicates on the sample: each row must succeed as written.
answer(refgrove_get_key(107, chen95)).
answer(refgrove_get_key(105, '')).
answer(refgrove_get_year(107, 1995)).
answer(refgrove_get_year(108, -1)).
answer(refgrove_cite_count(107, 2)).
answer(refgrove_get_cite(107, 0, 101, 9101)).
answer(refgrove_get_cite(107, 1, 105, 9105)).
answer(refgrove_title_length(107, 4)).
answer(refgrove_get_title_word(107, 3, 'Arrays')).
answer(refgrove_author_count(107, 3)).
answer(refgrove_get_author(107, 1, 'S. Gupta')).
answer(refgrove_get_author(115, 0, 'P. Erdős')).
answer(refgrove_id2author(9, 'P. Erdős')).
answer(refgrove_get_authors(107, [3, 6, 4])).
answer(refgrove_get_authors(150, [])).
answer(refgrove_get_author_id(107, 0, 4)).
answer(refgrove_get_word(101, 0, 'We')).
answer(refgrove_has_word_info(150)).
answer(refgrove_has_graph_info(146)).
answer(refgrove_author_distance(1, 2, 0.0)).
answer(refgrove_stats(33, 539, 21)).
answer(refgrove_document_count(33)).
answer(refgrove_get_nb_authors(21)).
answer(refgrove_last_did(151)).
answer(refgrove_title(107, ['Memory', 'Efficient', 'Suffix', 'Arrays'])).
answer(refgrove_authors(107, ['M. Chen', 'S. Gupta', 'A. Lee'])).
answer(refgrove_authors(115, ['P. Erdős', 'A. Rényi'])).
answer(refgrove_key_did(chen95, 107)).
answer(refgrove_key_did("chen95", 107)).
answer(refgrove_author_document(9, 115)).
answer(refgrove_cites(107, 105)).
answer(refgrove_citations(119, [110, 104, 115])).
answer(refgrove_citations(101, [])).
answer(refgrove_document(150)).
answer(refgrove_document(146)).
answer(findall(A, refgrove_author_named('a. lee', A), [3])).
answer(findall(A, refgrove_author_named("A. LEE", A), [3])).
answer(findall(A, refgrove_author_named('P. Erdős', A), [9])).
answer(findall(A, refgrove_author_named('P. ERDOS', A), [9])).
answer(findall(N, (refgrove_author_prefix('p. e', A), refgrove_id2author(A, N)), ['P. Eades', 'P. Erdős'])).
answer(refgrove_author_prefix('', 0)).

% Absent documents and items, and bound outputs that differ.
no_answer(refgrove_get_year(999, _)).
no_answer(refgrove_get_year(150, _)).
no_answer(refgrove_get_year(100000000000000000000, _)).
no_answer(refgrove_get_year(107, 1996)).
no_answer(refgrove_get_key(999, _)).
no_answer(refgrove_get_cite(107, 2, _, _)).
no_answer(refgrove_get_cite(107, 0, 101, 0)).
no_answer(refgrove_get_title_word(107, 4, _)).
no_answer(refgrove_get_title_word(107, -1, _)).
no_answer(refgrove_get_word(999, 0, _)).
no_answer(refgrove_get_author(107, 3, _)).
no_answer(refgrove_id2author(21, _)).
no_answer(refgrove_word_count(146, _)).
no_answer(refgrove_has_word_info(146)).
no_answer(refgrove_has_graph_info(150)).
no_answer(refgrove_author_distance(1, 2, 0)).
no_answer(refgrove_get_authors(107, [4, 6, 3])).
no_answer(refgrove_title(150, _)).
no_answer(refgrove_authors(150, _)).
no_answer(refgrove_abstract(146, _)).
no_answer(refgrove_document(999)).
no_answer(refgrove_document(-1)).
no_answer(refgrove_key_did(_, 105)).
no_answer(refgrove_key_did('-', _)).
no_answer(refgrove_key_did('', _)).
no_answer(refgrove_key_did(nokey, _)).
no_answer(refgrove_cites(_, 999)).
no_answer(refgrove_cites(107, 110)).
no_answer(refgrove_key_did(chen95, 108)).
no_answer(refgrove_author_document(21, _)).
no_answer(refgrove_author_named('a. le', _)).
no_answer(refgrove_author_named('a. lee', 4)).
no_answer(refgrove_author_prefix('zz', _)).
no_answer(refgrove_cites(107, 100000000000000000000)).
no_answer(refgrove_cites(100000000000000000000, _)).
no_answer(refgrove_citations(150, _)).
no_answer(refgrove_citations(999, _)).
no_answer(refgrove_citations(100000000000000000000, _)).
no_answer(refgrove_citations(119, [110])).

test(answers, Failed == []) :-
    findall(G, (answer(G), \+ once(G)), Failed).

test(no_answers, Succeeded == []) :-
    findall(G, (no_answer(G), once(G)), Succeeded).

% The abstract is the run that preprocessing wrote. The module's reading of
% the offsets as counts starts at the right word only for the first
% document, and counts three times as many words.
test(abstracts) :-
    refgrove_abstract(107, [First|_]),
    assertion(First == 'Suffix'),
    assertion(\+ refgrove_get_word(107, 0, 'Suffix')),
    refgrove_abstract(101, Abstract),
    length(Abstract, N),
    refgrove_word_count(101, ModuleCount),
    assertion(ModuleCount =:= 3 * N),
    findall(W, (between(1, N, I), I0 is I - 1, refgrove_get_word(101, I0, W)), Words),
    assertion(Abstract == Words).

test(printdoc_to_current_output) :-
    with_output_to(string(Out), refgrove_printdoc(107)),
    assertion(sub_string(Out, _, _, _, "M. Chen and S. Gupta and A. Lee")),
    assertion(\+ sub_string(Out, _, _, _, "Memory Efficient")),
    with_output_to(string(Name), refgrove_print_author(9)),
    assertion(Name == "P. Erdős"),
    with_output_to(string(Hello), refgrove_hello),
    assertion(Hello == "init_refgrove:\n[]\n").

:- end_tests(refgrove_answers).

:- begin_tests(refgrove_relations, [setup(load_sample)]).

last_did(N) :- refgrove_last_did(N0), N is N0 - 1.

test(documents, Docs == Expected) :-
    findall(D, refgrove_document(D), Docs),
    last_did(Last),
    findall(D, (between(0, Last, D), (refgrove_has_graph_info(D) ; refgrove_has_word_info(D)), \+ \+ true), Found),
    sort(Found, Expected).

forward_citation(Citing, Cited) :-
    last_did(Last),
    between(0, Last, Citing),
    refgrove_cite_count(Citing, N),
    N1 is N - 1,
    between(0, N1, I),
    refgrove_get_cite(Citing, I, Cited, _).

test(citations_every_direction) :-
    findall(X-Y, forward_citation(X, Y), Expected),
    findall(X-Y, refgrove_cites(X, Y), All),
    assertion(All == Expected),
    forall(member(X-_, Expected),
           ( findall(Y, member(X-Y, Expected), Cited),
             findall(Y, refgrove_cites(X, Y), Got),
             assertion(Got-X == Cited-X),
             assertion(refgrove_citations(X, Cited)) )),
    forall(member(_-Y, Expected),
           ( findall(X, member(X-Y, Expected), Citing0),
             msort(Citing0, Citing),
             findall(X, refgrove_cites(X, Y), Got),
             assertion(Got-Y == Citing-Y) )).

test(keys_both_ways) :-
    last_did(Last),
    findall(K-D, (between(0, Last, D), refgrove_get_key(D, K), K \== '-', K \== ''), Expected),
    findall(K-D, refgrove_key_did(K, D), All),
    assertion(All == Expected),
    forall(member(K-_, Expected),
           ( findall(D, member(K-D, Expected), Dids),
             findall(D, refgrove_key_did(K, D), Got),
             assertion(Got-K == Dids-K) )).

test(authorship_both_ways) :-
    last_did(Last),
    findall(A-D, (between(0, Last, D), refgrove_authors(D, _), refgrove_get_authors(D, Rev),
                  reverse(Rev, Ids), list_to_set(Ids, Set), member(A, Set)), Expected),
    findall(A-D, refgrove_author_document(A, D), All),
    assertion(All == Expected),
    refgrove_get_nb_authors(NA),
    forall(between(0, NA, A),
           ( findall(D, member(A-D, Expected), Dids0),
             sort(Dids0, Dids),
             findall(D, refgrove_author_document(A, D), Got),
             assertion(Got-A == Dids-A) )).

% With every argument bound, a relation answers at most once and leaves no
% choice point, whatever the order of the solutions it passes over.
test(bound_arguments_are_deterministic, Open == []) :-
    findall(G, ( member(G, [ refgrove_cites(119, 110), refgrove_cites(119, 115), refgrove_author_document(3, 107),
                             refgrove_author_document(3, 104), refgrove_key_did(chen95, 107),
                             refgrove_author_named('a. lee', 3), refgrove_author_prefix('a. ', 3),
                             refgrove_document(115) ]),
                 \+ answers_deterministically(G) ), Open).

% (deterministic/1 as the last call would see the frame of the caller.)
answers_deterministically(Goal) :-
    call(Goal),
    deterministic(Det),
    Det == true.

% The last solution leaves no choice point behind.
test(last_solution_is_deterministic, Open == []) :-
    findall(G, ( member(G, [ refgrove_cites(115, _), refgrove_cites(107, _), refgrove_cites(_, 115),
                             refgrove_key_did(erdos97, _), refgrove_key_did(_, 115),
                             refgrove_document(115), refgrove_author_document(_, 115),
                             refgrove_author_document(9, _) ]),
                 findall(Det, call_cleanup(G, Det = true), Dets),
                 \+ (last(Dets, Last), Last == true) ), Open).

:- end_tests(refgrove_relations).

:- begin_tests(refgrove_errors, [setup(load_sample)]).

test(unbound_did, error(instantiation_error)) :- refgrove_get_year(_, _).
test(unbound_index, error(instantiation_error)) :- refgrove_get_title_word(107, _, _).
test(unbound_title_did, error(instantiation_error)) :- refgrove_title(_, _).
test(unbound_citing, error(instantiation_error)) :- refgrove_citations(_, _).
test(unbound_path, error(instantiation_error)) :- refgrove_load(_).
test(unbound_preproc_output, error(instantiation_error)) :- refgrove_preproc('in/', _).
test(atom_did, error(type_error(integer, abc))) :- refgrove_get_year(abc, _).
test(float_index, error(type_error(integer, 1.0))) :- refgrove_get_cite(107, 1.0, _, _).
test(atom_printdoc, error(type_error(integer, abc))) :- refgrove_printdoc(abc).
test(atom_citing, error(type_error(integer, x))) :- refgrove_cites(x, _).
test(atom_cited, error(type_error(integer, x))) :- refgrove_cites(_, x).
test(atom_author, error(type_error(integer, x))) :- refgrove_author_document(x, _).
test(unbound_name, error(instantiation_error)) :- refgrove_author_named(_, _).
test(integer_prefix, error(type_error(atom, 1))) :- refgrove_author_prefix(1, _).
test(integer_key, error(type_error(atom, 1))) :- refgrove_key_did(1, _).
test(integer_path, error(type_error(atom, 123))) :- refgrove_load(123).
test(compound_path, error(type_error(atom, f(x)))) :- refgrove_preproc(f(x), 'out/').

test(missing_directory_keeps_data, [setup(temp_prefix(Dir)), cleanup((remove_prefix(Dir), check_sample_loaded))]) :-
    atom_concat(Dir, none, Missing),
    catch(refgrove_load(Missing), E, true),
    assertion(E = error(existence_error(directory, Missing), _)),
    message_text(E, Message),
    format(string(Expected), "directory ~w does not exist", [Missing]),
    assertion(Message == Expected).

test(missing_files_keep_data, [setup(temp_prefix(Empty)), cleanup((remove_prefix(Empty), check_sample_loaded))]) :-
    atom_concat(Empty, 'word-table', Missing),
    catch(refgrove_load(Empty), E, true),
    assertion(E = error(existence_error(file, Missing), _)).

check_sample_loaded :- assertion(refgrove_stats(33, 539, 21)).

% Each path is named once in the message.
test(missing_dumps, [setup(temp_prefix(Out)), cleanup(remove_prefix(Out))]) :-
    atom_concat(Out, none, In),
    catch(refgrove_preproc(In, Out), E, true),
    assertion(E = error(refgrove_io_error(In, 'No such file or directory'), _)),
    message_text(E, Message),
    format(string(Expected), "~w: No such file or directory", [In]),
    assertion(Message == Expected).

% The output's parent is a file: the output cannot be made.
test(unwritable_output, [setup(temp_prefix(Dir)), cleanup(remove_prefix(Dir))]) :-
    atom_concat(Dir, file, File),
    setup_call_cleanup(open(File, write, S), true, close(S)),
    atom_concat(File, '/out', Out),
    sample_dir(In),
    catch(silently(refgrove_preproc(In, Out)), E, true),
    assertion(E = error(refgrove_io_error(File, _), _)).

test(dump_that_does_not_parse,
     [ setup((temp_prefix(In), temp_prefix(Out))), cleanup((remove_prefix(In), remove_prefix(Out))) ]) :-
    write_dumps(In, "1 - - GIDs: DIDs: Title: t Authors: A", ""),
    catch(silently(refgrove_preproc(In, Out)), E, true),
    E = error(syntax_error(refgrove_dump(File, Row, Column, Message)), _),
    atom_concat(In, 'graph-data-aug-2002.txt', Dump),
    assertion(File == Dump),
    assertion(Row-Column-Message == 1-36-'unexpected end of file'),
    atom_concat(Out, graph_data, Unwritten),
    assertion(\+ exists_file(Unwritten)).

:- end_tests(refgrove_errors).

:- begin_tests(refgrove_loading, [setup(load_sample), cleanup(load_sample)]).

% The output directory is made, parents and all; directories may be given
% without their "/".
test(directories_without_slash_made_when_missing, [setup(temp_prefix(Dir)), cleanup(remove_prefix(Dir))]) :-
    sample_dir(In0),
    atom_concat(In, '/', In0),
    atom_concat(Dir, 'new/out', Out),
    silently(refgrove_preproc(In, Out)),
    silently(refgrove_load(Out)),
    assertion(refgrove_stats(33, 539, 21)).

% `refgrove check` finds a directory whole whichever face wrote it last,
% and still tells files of two runs apart.
test(check_agrees_across_faces, [condition(getenv('REFGROVE_TOOL', _)), setup(temp_prefix(Dir)),
                                 cleanup(remove_prefix(Dir))]) :-
    getenv('REFGROVE_TOOL', Tool),
    sample_dir(In),
    atom_concat(Dir, out, Out),
    atom_concat(Dir, other, Other),
    tool_status(Tool, [preprocess, In, Out], 0),
    silently(refgrove_preproc(In, Out)),
    tool_status(Tool, [check, Out], 0),
    silently(refgrove_preproc(In, Other)),
    tool_status(Tool, [preprocess, In, Out], 0),
    tool_status(Tool, [check, Out], 0),
    write_dumps(Dir, `1 one 2000 GIDs: DIDs: Title: T Authors: A\n`, `1 one word\n`),
    silently(refgrove_preproc(Dir, Other)),
    atom_concat(Other, '/graph_data', From),
    atom_concat(Out, '/graph_data', To),
    copy_file(From, To),
    tool_status(Tool, [check, Out], 1).

:- use_module(library(process)).

% The tool carries its own sanitizer runtime, if any: swipl's preloaded one
% is not passed on.
tool_status(Tool, Args, Status) :-
    process_create(Tool, Args, [stdout(null), stderr(null), environment(['LD_PRELOAD'='']), process(Pid)]),
    process_wait(Pid, exit(Actual)),
    assertion(Actual-Args == Status-Args).

:- multifile user:message_hook/3.
user:message_hook(refgrove(Lines), debug(refgrove), _) :-  % a load speaks only when asked
    heard(listening),
    assertz(heard(Lines)).

test(messages_captured, [setup(asserta(heard(listening))), cleanup(retractall(heard(_)))]) :-
    data_dir(Dir),
    silently(refgrove_load(Dir)),
    heard(Lines), Lines \== listening, !,
    atom_concat(Dir, graph_data, GraphFile),
    atom_string(GraphFile, GraphString),
    assertion(memberchk("deleting loaded data...", Lines)),
    assertion((member(L, Lines), sub_string(L, _, _, _, GraphString))).

% Author names as bytes, and the characters of their atoms: UTF-8 where
% the bytes are strict UTF-8, one character per byte otherwise.
name_bytes([0xC3, 0xA9],             [0xE9]).            % two bytes
name_bytes([0xF0, 0x9F, 0x98, 0x80], [0x1F600]).         % four bytes
name_bytes([0xC0, 0xAF],             [0xC0, 0xAF]).      % overlong
name_bytes([0xE0, 0x80, 0xAF],       [0xE0, 0x80, 0xAF]). % overlong
name_bytes([0xED, 0xA0, 0x80],       [0xED, 0xA0, 0x80]). % surrogate
name_bytes([0xF4, 0x90, 0x80, 0x80], [0xF4, 0x90, 0x80, 0x80]). % above U+10FFFF
name_bytes([0xC3],                   [0xC3]).            % cut short
name_bytes([0xE9, 0x41],             [0xE9, 0x41]).      % Latin-1

% One document per row, DID = row number, its author "a" + the row's bytes.
name_dump(Codes) :-
    findall(Line, ( name_bytes_row(Did, Bytes),
                    format(codes(Start), '~w k~w 2000 GIDs: DIDs: Title: t Authors: a', [Did, Did]),
                    append([Start, Bytes, `\n`], Line) ), Lines),
    append(Lines, Codes).

name_bytes_row(Did, Bytes) :-
    findall(B, name_bytes(B, _), Rows),
    nth1(Did, Rows, Bytes).

test(texts_that_are_not_utf8,
     [setup((temp_prefix(In), temp_prefix(Out))), cleanup((remove_prefix(In), remove_prefix(Out)))]) :-
    name_dump(Graph),
    append(Graph, `9 k\xE9\ 2000 GIDs: DIDs: Title: Caf\xE9\ Authors: a\n`, Dump),
    write_dumps(In, Dump, `1 k1 words\n`),
    silently(refgrove_preproc(In, Out)),
    silently(refgrove_load(Out)),
    forall(( name_bytes_row(Did, Bytes), name_bytes(Bytes, Expected) ),
           ( refgrove_authors(Did, [Name]),
             atom_codes(Name, [0'a|Codes]),
             assertion(Codes-Bytes == Expected-Bytes),
             refgrove_get_author_id(Did, 0, Id),
             with_output_to(codes([0'a|Printed]), refgrove_print_author(Id)),
             assertion(Printed-Bytes == Expected-Bytes) )),
    assertion(refgrove_title(9, ['Caf\xE9\'])),
    assertion(refgrove_get_key(9, 'k\xE9\')),
    assertion(refgrove_key_did('k\xE9\', 9)),
    assertion(refgrove_key_did("k\xE9\", 9)).

test(reload_replaces) :-
    load_sample,
    assertion(refgrove_stats(33, 539, 21)),
    assertion(refgrove_key_did(chen95, 107)).

% A walk through the citations keeps the data set it started on when
% another one is loaded between two solutions.
test(enumeration_outlives_reload,
     [setup((temp_prefix(In), temp_prefix(Out))), cleanup((remove_prefix(In), remove_prefix(Out), load_sample))]) :-
    write_dumps(In, `1 one 2000 GIDs: 9 DIDs: 2 Title: T Authors: A\n`, `1 one word\n`),
    silently(refgrove_preproc(In, Out)),
    findall(X-Y, refgrove_cites(X, Y), Expected),
    findall(X-Y, ( refgrove_cites(X, Y),
                   ( X-Y == 102-101 -> silently(refgrove_load(Out)) ; true ) ), During),
    assertion(During == Expected),
    assertion(findall(X-Y, refgrove_cites(X, Y), [1-2])).

% Several threads query while the main thread reloads, and preprocesses
% into the directory that is loaded: every answer stays that of the sample.
test(threads_query_during_reloads) :-
    data_dir(Dir),
    sample_dir(In),
    rounds_during_reloads(sample_answers, reload_or_preprocess(In, Dir), 200, Statuses),
    assertion(maplist(==(true), Statuses)).

reload_or_preprocess(In, Dir, K) :-
    (   K mod 20 =:= 0
    ->  silently(refgrove_preproc(In, Dir))
    ;   silently(refgrove_load(Dir))
    ).

sample_answers :-
    refgrove_stats(33, 539, 21),
    findall(X, refgrove_cites(X, 110), [115, 116, 119, 124, 127, 137]),
    refgrove_authors(115, ['P. Erdős', 'A. Rényi']),
    refgrove_abstract(107, ['Suffix'|_]),
    refgrove_title(107, ['Memory', 'Efficient', 'Suffix', 'Arrays']),
    refgrove_get_title_word(107, 3, 'Arrays'),
    refgrove_get_word(101, 0, 'We'),
    aggregate_all(count, refgrove_document(_), 33).

:- end_tests(refgrove_loading).

:- initialization((at_halt(cleanup_all))).

:- begin_tests(refgrove_network, [setup(load_sample)]).

% The documents with a graph record, and the distinct ones citing Did.
graph_document(Did) :-
    refgrove_document(Did),
    refgrove_has_graph_info(Did).

citing_documents(Did, Citing) :-
    setof(C, (refgrove_cites(C, Did), graph_document(C)), Citing),
    !.
citing_documents(_, []).

test(citation_counts_agree_with_cites) :-
    forall(graph_document(Did),
           (   citing_documents(Did, Citing),
               length(Citing, N),
               assertion(refgrove_citation_count(Did, N))
           )).

test(ranking_enumerates_best_first_then_stops) :-
    findall(D-S, refgrove_ranked_document(citations, D, S), All),
    aggregate_all(count, graph_document(_), Nodes),
    assertion(length(All, Nodes)),
    refgrove_ranked(citations, Top, []),
    assertion(length(Top, 10)),
    assertion(append(Top, _, All)),
    last(All, LastDid-LastScore),
    refgrove_ranked_document(citations, LastDid, Score),
    assertion(Score == LastScore),
    findall(S, refgrove_ranked_document(pagerank, _, S), Scores),
    sum_list(Scores, Sum),
    assertion(abs(Sum - 1.0) < 1.0e-9).

test(ranking_by_years, Years == [1995]) :-
    refgrove_ranked(pagerank, Pairs, [limit(100), years(1995, 1995)]),
    setof(Y, D^S^(member(D-S, Pairs), refgrove_get_year(D, Y)), Years).

test(neighbourhood_defaults_to_one_hop_both_ways, Expected == Got) :-
    refgrove_neighbourhood(110, Nodes, _, []),
    citing_documents(110, Citing),
    findall(C, (refgrove_cites(110, C), graph_document(C)), Cited),
    append(Citing, Cited, Around),
    sort(Around, Expected),
    findall(D, member(D-1, Nodes), Got0),
    msort(Got0, Got).

test(neighbourhood_limits) :-
    refgrove_neighbourhood(110, [110-0], [], [hops(0)]),
    refgrove_neighbourhood(110, All, _, [limit(0)]),
    refgrove_neighbourhood(110, All, _, [limit(1000000000)]),
    refgrove_neighbourhood(110, Nodes, _, [hops(1000000000), limit(1000000000), direction(in)]),
    assertion(Nodes = [110-0|_]).

test(paths_and_distances) :-
    refgrove_get_authors(115, [A, B]),
    refgrove_collaboration_distance(A, B, 1),
    refgrove_collaboration_path(A, B, [A, 115, B]),
    refgrove_collaboration_distance(A, A, 0),
    refgrove_citation_distance(115, 110, 1),
    \+ refgrove_citation_distance(110, 115, _),
    refgrove_citation_distance(110, 115, 1, [direction(both)]).

test(similar_and_component) :-
    refgrove_similar(110, coupling, Pairs, [limit(3)]),
    assertion(length(Pairs, 3)),
    refgrove_component(110, Id, Size),
    assertion((Id == 0, Size > 1)).

test(unknown_documents_fail) :-
    \+ refgrove_citation_count(99999, _),
    \+ refgrove_pagerank(-1, _),
    \+ refgrove_neighbourhood(99999, _, _, []),
    \+ refgrove_similar(99999, cocitation, _, []),
    \+ refgrove_component(99999, _, _),
    \+ refgrove_collaboration_distance(0, 1000000, _).

% cut(+Kind, +Limit, -Total, -Kept): an answer cut by Limit and its total.
cut(ranked, Limit, Total, Kept) :- refgrove_ranked(citations, Kept, [limit(Limit), total(Total)]).
cut(ranked_years, Limit, Total, Kept) :- refgrove_ranked(pagerank, Kept, [years(1995, 1996), limit(Limit), total(Total)]).
cut(similar, Limit, Total, Kept) :- refgrove_similar(110, coupling, Kept, [limit(Limit), total(Total)]).
cut(neighbourhood, Limit, Total, Kept) :- refgrove_neighbourhood(110, Kept, _, [hops(2), limit(Limit), total(Total)]).

test(limit_zero_is_all_and_total_counts_the_rest) :-
    forall(member(Kind, [ranked, ranked_years, similar, neighbourhood]),
           (   cut(Kind, 0, Total, All),
               assertion(Kind-Total \== Kind-0),
               assertion(length(All, Total)),
               cut(Kind, 2, Total2, Two),
               assertion(Kind-Total2 == Kind-Total),
               assertion(append(Two, _, All)),
               assertion(length(Two, 2))
           )).

% An option that no predicate takes names the valid ones and the public
% predicate, as do the foreign predicates' own errors.
test(options_and_errors_name_the_public_predicate) :-
    forall(member(Goal-Formal-PI,
                  [ refgrove_search(graph, _, [limt(3)])-domain_error(oneof([limit/1, mode/1, exact/1, total/1]), limt(3))-(refgrove_search/3),
                    refgrove_ranked(citations, _, [limit(2), year(1995)])-
                        domain_error(oneof([limit/1, total/1, years/2]), year(1995))-(refgrove_ranked/3),
                    refgrove_similar(110, coupling, _, [limits(1)])-domain_error(oneof([measure/1, limit/1, total/1]), limits(1))-
                        (refgrove_similar/4),
                    refgrove_neighbourhood(110, _, _, [hop(2)])-
                        domain_error(oneof([hops/1, direction/1, limit/1, total/1]), hop(2))-(refgrove_neighbourhood/4),
                    refgrove_citation_distance(1, 2, _, [dir(out)])-domain_error(oneof([direction/1]), dir(out))-
                        (refgrove_citation_distance/4),
                    refgrove_similar(110, _, _, [_])-instantiation_error-(refgrove_similar/4),
                    refgrove_search(42, _)-type_error(text, 42)-(refgrove_search/2),
                    refgrove_search(graph, _, [])-none-none,
                    refgrove_ranked(rank, _, [])-domain_error(refgrove_option, rank)-(refgrove_ranked/3),
                    refgrove_ranked_document(rank, _, _)-domain_error(refgrove_option, rank)-
                        (refgrove_ranked_document/3),
                    refgrove_ranked(citations, _, _)-instantiation_error-(refgrove_ranked/3),
                    refgrove_similar(110, cup, _, [])-domain_error(refgrove_option, cup)-(refgrove_similar/4),
                    refgrove_neighbourhood(110, _, _, [direction(up)])-domain_error(refgrove_option, up)-
                        (refgrove_neighbourhood/4)
                  ]),
           (   catch((Goal, Got = none-none), error(F, context(P, _)), Got = F-P),
               assertion(Got == Formal-PI)
           )).

test(bad_ranking, error(domain_error(refgrove_option, rank))) :- refgrove_ranked(rank, _, []).
test(reversed_years, error(domain_error(year_range, 2000-1990))) :-
    refgrove_ranked(pagerank, _, [years(2000, 1990)]).
test(bad_direction, error(domain_error(refgrove_option, up))) :-
    refgrove_neighbourhood(110, _, _, [direction(up)]).
test(negative_hops, error(type_error(nonneg, -1))) :- refgrove_neighbourhood(110, _, _, [hops(-1)]).
test(unbound_did, error(instantiation_error)) :- refgrove_pagerank(_, _).

:- end_tests(refgrove_network).

:- begin_tests(refgrove_fronts, [setup(load_sample)]).

% The Id-Size pairs that refgrove_cluster/3 enumerates, counted.
member_counts(Graph, Counts) :-
    findall(Id, refgrove_cluster(Graph, _, Id), Ids),
    msort(Ids, Sorted),
    clumped(Sorted, Counts).

test(clusters_agree_with_their_members) :-
    forall(member(Graph, [citation, cocitation, coupling, coauthor]),
           (   refgrove_clusters(Graph, Clusters, [seed(7), modularity(M)]),
               findall(Id-Size, member(cluster(Id, Size, _), Clusters), Expected),
               member_counts(Graph, Counts),
               assertion(Counts == Expected),
               assertion(number(M)),
               forall(refgrove_cluster(Graph, Member, Id),
                      assertion(refgrove_cluster(Graph, Member, Id)))
           )).

test(clusters_numbered_by_size_and_labelled) :-
    refgrove_clusters(citation, Clusters, []),
    findall(S, member(cluster(_, S, _), Clusters), Sizes),
    msort(Sizes, Ascending), reverse(Ascending, Descending),
    assertion(Sizes == Descending),
    forall(member(cluster(_, _, Label), Clusters),
           ( assertion(is_list(Label)), length(Label, N), assertion(N =< 3) )).

test(cluster_of_no_member_fails) :-
    refgrove_clusters(citation, _, []),
    assertion(\+ refgrove_cluster(citation, 99999, _)).

% Every link of the main path is a citation, from a source to a sink.
test(main_path_follows_citations) :-
    refgrove_main_path(Path),
    assertion(Path = [_, _|_]),
    forall(nextto(A, B, Path), assertion(refgrove_cites(A, B))),
    Path = [Source|_], last(Path, Sink),
    assertion(\+ refgrove_cites(_, Source)),
    assertion(\+ ( refgrove_cites(Sink, C), refgrove_has_graph_info(C) )).

% The h-index of every author, from their documents' citation counts.
test(h_index_by_its_definition) :-
    refgrove_get_nb_authors(Authors),
    Last is Authors - 1,
    forall(between(0, Last, A),
           (   findall(C, ( refgrove_author_document(A, D), refgrove_citation_count(D, C) ), Counts),
               msort(Counts, Ascending), reverse(Ascending, Descending),
               h_of(Descending, 1, H),
               assertion(refgrove_h_index(A, H))
           )).

h_of([C|Cs], I, H) :- C >= I, !, I1 is I + 1, h_of(Cs, I1, H).
h_of(_, I, H) :- H is I - 1.

test(author_ranking_by_h_index) :-
    refgrove_author_ranked(h_index, Pairs, [limit(0), total(Total)]),
    refgrove_get_nb_authors(Total),
    forall(member(A-H, Pairs), assertion(refgrove_h_index(A, H))),
    assertion(sorted_best_first(Pairs)),
    refgrove_author_ranked('h-index', Top, [limit(3)]),
    assertion(append(Top, _, Pairs)).

sorted_best_first(Pairs) :-
    forall(nextto(A1-V1, A2-V2, Pairs), ( V1 > V2 ; V1 =:= V2, A1 < A2 )).

% A document's citations per year add up to its distinct citing documents
% with a year (-1 when unknown).
test(citations_by_year_sum_to_the_citations) :-
    forall(( refgrove_document(Did), refgrove_citation_count(Did, Count) ),
           (   refgrove_citations_by_year(Did, Years),
               aggregate_all(sum(N), member(_-N, Years), Sum),
               aggregate_all(count, C, ( refgrove_cites(C, Did), refgrove_has_graph_info(C),
                                         refgrove_get_year(C, Year), Year >= 0 ), Dated),
               assertion(Sum =< Count),
               assertion(Sum =:= Dated)
           )),
    assertion(\+ refgrove_citations_by_year(author(99999), _)).

test(similar_by_jaccard) :-
    refgrove_similar(110, coupling, Pairs, [measure(jaccard), limit(0)]),
    forall(member(D-Score, Pairs),
           (   setof(X, refgrove_cites(110, X), A),
               setof(X, refgrove_cites(D, X), B),
               ord_intersection(A, B, Both), ord_union(A, B, Either),
               length(Both, NB), length(Either, NE),
               assertion(abs(Score - NB / NE) < 1.0e-12)
           )).

test(bad_options, [forall(member(Goal-Formal,
        [ refgrove_clusters(foo, _, [])-domain_error(refgrove_option, foo),
          refgrove_clusters(citation, _, [quality(best)])-domain_error(refgrove_option, best),
          refgrove_clusters(citation, _, [seed(-1)])-domain_error(nonneg, -1),
          refgrove_clusters(citation, _, [resolution(a)])-type_error(number, a),
          refgrove_clusters(citation, _, [min_weight(0)])-domain_error(positive_integer, 0),
          refgrove_clusters(citation, _, [size(1)])-domain_error(oneof(_), size(1)),
          refgrove_author_ranked(fame, _, [])-domain_error(refgrove_option, fame),
          refgrove_author_ranked(h_index, _, [limit(-1)])-type_error(nonneg, -1)
        ]))]) :-
    catch(Goal, error(Caught, _), true),
    assertion(subsumes_term(Formal, Caught)).

:- end_tests(refgrove_fronts).

:- begin_tests(refgrove_search).

% BM25 over every document's folded title and abstract words, scanned
% here term by term: Did-Score pairs, best first.
scan_search(Query, Mode, Hits) :-
    split_string(Query, " ", " ", Parts),
    exclude(==(""), Parts, Strings),
    maplist([S, T]>>(atom_string(A, S), downcase_atom(A, T)), Strings, Terms0),
    list_to_set(Terms0, Terms),
    findall(D-Ws, doc_words(D, Ws), Docs),
    length(Docs, N),
    aggregate_all(sum(L), (member(_-Ws, Docs), length(Ws, L)), Total),
    Avg is Total / N,
    maplist(term_idf(Docs, N), Terms, Idfs),
    findall(Key-(D-S),
            ( member(D-Ws, Docs),
              doc_score(Terms, Idfs, Ws, Avg, 0.0, S, 0, Found),
              length(Terms, NT),
              ( Mode == and -> Found =:= NT ; Found > 0 ),
              NegS is -S, Key = NegS-D ),
            Keyed),
    msort(Keyed, Sorted),
    pairs_values(Sorted, Hits).

doc_words(D, Words) :-
    refgrove_document(D),
    ( refgrove_title(D, T) -> true ; T = [] ),
    ( refgrove_abstract(D, A) -> true ; A = [] ),
    append(T, A, W0),
    W0 \== [],
    maplist(downcase_atom, W0, Words).

matches(Term, Word) :-
    (   atom_concat(Prefix, '*', Term)
    ->  sub_atom(Word, 0, _, _, Prefix)
    ;   Word == Term
    ).

term_idf(Docs, N, T, Idf) :-
    aggregate_all(count, (member(_-Ws, Docs), once((member(W, Ws), matches(T, W)))), Nt),
    Idf is log(1 + (N - Nt + 0.5) / (Nt + 0.5)).

doc_score([], [], _, _, S, S, F, F).
doc_score([T|Ts], [Idf|Idfs], Ws, Avg, S0, S, F0, F) :-
    aggregate_all(count, (member(W, Ws), matches(T, W)), Tf),
    length(Ws, Len),
    (   Tf > 0
    ->  S1 is S0 + Idf * Tf * (1.2 + 1) / (Tf + 1.2 * (1 - 0.75 + 0.75 * Len / Avg)),
        F1 is F0 + 1
    ;   S1 = S0, F1 = F0
    ),
    doc_score(Ts, Idfs, Ws, Avg, S1, S, F1, F).

same_hits(Hits, Expected) :-
    pairs_keys(Hits, Dids), pairs_keys(Expected, Dids),
    pairs_values(Hits, Scores), pairs_values(Expected, ExpectedScores),
    maplist([A, B]>>(abs(A - B) =< 1.0e-9 * abs(B)), Scores, ExpectedScores).

test(hits_as_scanned, [forall(( member(Q, ["graph", "GRAPH", "random graphs", "gr*", "the of",
                                          "ERDŐS", "graph graph", "absent", 'r* c*'] ),
                                member(Mode, [and, or]) ))]) :-
    load_sample,
    scan_search(Q, Mode, Expected),
    refgrove_search(Q, Hits, [limit(0), mode(Mode), exact(true)]),
    assertion(same_hits(Hits, Expected)),
    refgrove_search(Q, Top, [mode(Mode), exact(true), total(Total)]),
    length(Expected, NE), NT is min(10, NE), length(Prefix, NT), append(Prefix, _, Expected),
    assertion(same_hits(Top, Prefix)),
    assertion(Total == NE).

% Stems are the default: refgrove_search/2 enumerates refgrove_search/3's
% hits; a query finds the documents of every form of its words, and a
% phrase a part of its words' documents.
test(stems_and_phrases, [forall(member(Q-Forms, ["graph"-"graphs", "random graphs"-"randomly graph",
                                                  "\"citation networks\""-"\"citation network\""]))]) :-
    load_sample,
    refgrove_search(Q, Hits, [limit(0), total(Total)]),
    length(Hits, Total),
    findall(D, refgrove_search(Q, D), Dids),
    assertion(pairs_keys(Hits, Dids)),
    refgrove_search(Forms, FormHits, [limit(0)]),
    assertion(FormHits == Hits),
    refgrove_search(Q, Exact, [limit(0), exact(true)]),
    pairs_keys(Exact, ExactDids),
    assertion(subset(ExactDids, Dids)).

test(errors) :-
    load_sample,
    catch(refgrove_search(_, _), E1, true),
    assertion(E1 = error(instantiation_error, _)),
    catch(refgrove_search(f(x), _), E2, true),
    assertion(E2 = error(type_error(text, f(x)), _)),
    forall(member(Q, ['', "  ", '*', 'graph *']),
           ( catch(refgrove_search(Q, _), E, true),
             assertion(E = error(domain_error(refgrove_query, Q), _)) )),
    catch(refgrove_search(graph, _, [limit(-1)]), E3, true),
    assertion(E3 = error(type_error(nonneg, -1), _)),
    catch(refgrove_search(graph, _, [mode(xor)]), E4, true),
    assertion(E4 = error(type_error(oneof([and, or]), xor), _)),
    catch(refgrove_search(graph, _, [exact(yes)]), E5, true),
    assertion(E5 = error(type_error(boolean, yes), _)),
    forall(member(Q, ['"graph', '"graph dra*"']),
           ( catch(refgrove_search(Q, _), E, true),
             assertion(E = error(domain_error(refgrove_query, Q), _)) )).

% Threads search while the main thread reloads: every answer stays that
% of the sample.
test(threads_search_during_reloads) :-
    load_sample,
    data_dir(Dir),
    refgrove_search('graph*', Expected, [limit(0), mode(or)]),
    rounds_during_reloads(refgrove_search('graph*', Expected, [limit(0), mode(or)]),
                          reload(Dir), 100, Statuses),
    assertion(maplist(==(true), Statuses)).

reload(Dir, _) :-
    silently(refgrove_load(Dir)).

:- end_tests(refgrove_search).
