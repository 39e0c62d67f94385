:- module(refgrove,
          [ % The module's operations, and relations over the data set
            refgrove_hello/0,
            refgrove_preproc/2,           % +InDir, +OutDir
            refgrove_load/1,              % +Dir
            refgrove_has_word_info/1,     % +Did
            refgrove_has_graph_info/1,    % +Did
            refgrove_printdoc/1,          % +Did
            refgrove_print_author/1,      % +AuthorId
            refgrove_last_did/1,          % ?N
            refgrove_document_count/1,    % ?N
            refgrove_get_nb_authors/1,    % ?N
            refgrove_stats/3,             % ?Docs, ?Words, ?Authors
            refgrove_word_count/2,        % +Did, ?N
            refgrove_title_length/2,      % +Did, ?N
            refgrove_author_count/2,      % +Did, ?N
            refgrove_cite_count/2,        % +Did, ?N
            refgrove_get_year/2,          % +Did, ?Year
            refgrove_get_author_id/3,     % +Did, +I, ?AuthorId
            refgrove_get_cite/4,          % +Did, +I, ?Cited, ?Gid
            refgrove_get_key/2,           % +Did, ?Key
            refgrove_get_title_word/3,    % +Did, +I, ?Word
            refgrove_get_word/3,          % +Did, +I, ?Word
            refgrove_get_author/3,        % +Did, +I, ?Name
            refgrove_id2author/2,         % +AuthorId, ?Name
            refgrove_get_authors/2,       % +Did, ?AuthorIds (last author first)
            refgrove_author_distance/3,   % +A, +B, ?Distance
            refgrove_document/1,          % ?Did
            refgrove_cites/2,             % ?Citing, ?Cited
            refgrove_citations/2,         % +Citing, -Cited
            refgrove_key_did/2,           % ?Key, ?Did
            refgrove_author_document/2,   % ?AuthorId, ?Did
            refgrove_title/2,             % +Did, -Words
            refgrove_abstract/2,          % +Did, -Words
            refgrove_authors/2,           % +Did, -Names (first author first)
            refgrove_author_named/2,      % +Name, ?AuthorId
            refgrove_author_prefix/2,     % +Prefix, ?AuthorId
            % The citation network
            refgrove_citation_count/2,    % +Did, -N
            refgrove_pagerank/2,          % +Did, -Score
            refgrove_ranked/3,            % +By, -Pairs, +Options
            refgrove_ranked_document/3,   % +By, -Did, -Score
            refgrove_collaboration_distance/3, % +A, +B, -D
            refgrove_collaboration_path/3, % +A, +B, -Path
            refgrove_citation_distance/3, % +From, +To, -D
            refgrove_citation_distance/4, % +From, +To, -D, +Options
            refgrove_neighbourhood/4,     % +Did, -Nodes, -Edges, +Options
            refgrove_similar/4,           % +Did, +By, -Pairs, +Options
            refgrove_component/3,         % +Did, -Id, -Size
            % Search by words
            refgrove_search/2,            % +Query, -Did
            refgrove_search/3,            % +Query, -Hits, +Options
            % The structure of a field
            refgrove_clusters/3,          % +Graph, -Clusters, +Options
            refgrove_cluster/3,           % +Graph, ?Member, ?Id
            refgrove_main_path/1,         % -Dids
            refgrove_h_index/2,           % +AuthorId, -H
            refgrove_author_ranked/3,     % +By, -Pairs, +Options
            refgrove_citations_by_year/2  % +DidOrAuthor, -YearCounts
          ]).

/** <module> A citation database of scientific documents

The data set is preprocessed from its text dumps by refgrove_preproc/2,
loaded by refgrove_load/1 and queried by the other predicates. Texts come
as atoms (UTF-8 decoded where the bytes are valid UTF-8, one character per
byte otherwise), absent documents and items make a query fail, and inputs
of the wrong kind raise the usual instantiation and type errors.

Directory arguments name directories, with or without their trailing `/`.
Every query raises `existence_error(refgrove_data_set, loaded)` before the
first refgrove_load/1.

Messages of preprocessing are printed as informational messages
refgrove(Lines): `set_prolog_flag(verbose, silent)` silences them and
message_hook/3 sees them. Those of loading are of kind debug(refgrove):
quiet unless `debug(refgrove)` asks for them.

Options are checked: one that a predicate does not take raises
`domain_error(oneof(Valid), Option)`. Lists cut by a default limit take
`limit(0)` for all and `total(-Total)` for how many there are.
*/

:- use_module(library(error), [must_be/2, domain_error/2]).
:- use_module(library(lists), [member/2, append/3]).
:- use_module(library(option), [option/2, option/3]).
:- use_module(library(pldoc), []).   % help/1 and doc_server/1 show the comments below
:- use_foreign_library(foreign(refgrove4pl)).

%   The predicates are foreign (refgrove4pl). Each comment below gives the
%   modes, the determinism, the errors and an example on the sample data
%   set (data/sample/).

%!  refgrove_hello is det.
%
%   Writes the module's start lines to current_output.
%
%   ==
%   ?- refgrove_hello.
%   init_refgrove:
%   []
%   ==

%!  refgrove_preproc(+InDir, +OutDir) is det.
%
%   Preprocesses the text dumps of InDir (graph-data-aug-2002.txt,
%   word-data{1,2,3}-mar-2002.txt) into the data directory OutDir, made
%   when missing. The run writes a staging directory beside OutDir and
%   moves the files into place once they pass the consistency check, with
%   a manifest that `refgrove check` compares with them; a run that fails
%   leaves OutDir as it was. Its messages are informational
%   refgrove(Lines).
%
%   ==
%   ?- refgrove_preproc('data/sample', '/tmp/sample').
%   true.
%   ==
%
%   @error syntax_error(refgrove_dump(File, Row, Column, Message)) when a
%          dump does not parse.
%   @error refgrove_io_error(Path, Reason) when an input cannot be read or
%          the output cannot be written.

%!  refgrove_load(+Dir) is det.
%
%   Loads the data directory Dir, replacing the data set loaded before.
%   Threads querying meanwhile keep the set they started with.
%   It prints nothing: its messages (the files read) are of kind
%   debug(refgrove), printed after `debug(refgrove)`.
%
%   ==
%   ?- refgrove_load('/tmp/sample').
%   true.
%   ==
%
%   @error existence_error(directory, Dir) or existence_error(file, File)
%          when Dir or one of its four files is missing; the data set
%          loaded before stays.

%!  refgrove_has_word_info(+Did) is semidet.
%
%   True when document Did has words (an abstract) in the data set.
%
%   ==
%   ?- refgrove_has_word_info(150).
%   true.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_has_graph_info(+Did) is semidet.
%
%   True when document Did has a graph record (key, year, title,
%   authors, citations).
%
%   ==
%   ?- refgrove_has_graph_info(146).
%   true.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_printdoc(+Did) is det.
%
%   Prints document Did as the module does: its word-data header,
%   authors and words to current_output, its title words to user_error.
%   The words printed after "abstract:" are those of the module's reading
%   of the offsets as counts, which for every document but the first are
%   another document's: refgrove_abstract/2 gives the real abstract.
%
%   ==
%   ?- refgrove_printdoc(107).
%   Document 4 - DID=107 - # words=96
%   # Authors = 3
%   M. Chen and S. Gupta and A. Lee
%   title: abstract:
%   ...
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_print_author(+AuthorId) is det.
%
%   Writes the name of AuthorId to current_output, without a line end.
%
%   ==
%   ?- refgrove_print_author(9).
%   P. Erdős
%   ==
%
%   @error instantiation_error or type_error(integer, X) for AuthorId;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_last_did(?N) is semidet.
%
%   N is one more than the largest DID of the data set: a bound for
%   between/3, not necessarily a document.
%
%   ==
%   ?- refgrove_last_did(N).
%   N = 151.
%   ==
%
%   @error existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_document_count(?N) is semidet.
%
%   N is the number of documents with words (the first of refgrove_stats/3).
%
%   ==
%   ?- refgrove_document_count(N).
%   N = 33.
%   ==
%
%   @error existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_nb_authors(?N) is semidet.
%
%   N is the number of authors in the author table; author ids are
%   0 .. N-1.
%
%   ==
%   ?- refgrove_get_nb_authors(N).
%   N = 21.
%   ==
%
%   @error existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_stats(?Docs, ?Words, ?Authors) is semidet.
%
%   The documents with words, the distinct words and the authors of the
%   data set.
%
%   ==
%   ?- refgrove_stats(D, W, A).
%   D = 33, W = 539, A = 21.
%   ==
%
%   @error existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_word_count(+Did, ?N) is semidet.
%
%   N words in the module's reading of Did's abstract (the offsets read
%   as counts: see refgrove_printdoc/1). Fails without words.
%
%   ==
%   ?- refgrove_word_count(107, N).
%   N = 96.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_title_length(+Did, ?N) is semidet.
%
%   N words in Did's title. Fails without a graph record.
%
%   ==
%   ?- refgrove_title_length(107, N).
%   N = 4.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_author_count(+Did, ?N) is semidet.
%
%   N authors listed by Did. Fails without a graph record.
%
%   ==
%   ?- refgrove_author_count(107, N).
%   N = 3.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_cite_count(+Did, ?N) is semidet.
%
%   N citations made by Did. Fails without a graph record.
%
%   ==
%   ?- refgrove_cite_count(107, N).
%   N = 2.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_year(+Did, ?Year) is semidet.
%
%   Year of Did, -1 when the dump gave none. Fails without a graph
%   record.
%
%   ==
%   ?- refgrove_get_year(107, Year).
%   Year = 1995.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_author_id(+Did, +I, ?AuthorId) is semidet.
%
%   AuthorId is Did's author at position I (from 0). Fails when there is
%   none.
%
%   ==
%   ?- refgrove_get_author_id(107, 0, Id).
%   Id = 4.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did, I;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_cite(+Did, +I, ?Cited, ?Gid) is semidet.
%
%   Citation I (from 0) of Did cites document Cited, in group Gid. Fails
%   when there is none.
%
%   ==
%   ?- refgrove_get_cite(107, 0, Cited, Gid).
%   Cited = 101, Gid = 9101.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did, I;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_key(+Did, ?Key) is semidet.
%
%   Key is Did's key as an atom ('' or '-' when the dump gave none).
%   Fails without a graph record.
%
%   ==
%   ?- refgrove_get_key(107, Key).
%   Key = chen95.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_title_word(+Did, +I, ?Word) is semidet.
%
%   Word is title word I (from 0) of Did. Fails when there is none.
%
%   ==
%   ?- refgrove_get_title_word(107, 3, Word).
%   Word = 'Arrays'.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did, I;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_word(+Did, +I, ?Word) is semidet.
%
%   Word is word I (from 0) of the module's reading of Did's abstract
%   (see refgrove_printdoc/1; refgrove_abstract/2 gives the real one).
%   Fails when there is none.
%
%   ==
%   ?- refgrove_get_word(101, 0, Word).
%   Word = 'We'.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did, I;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_author(+Did, +I, ?Name) is semidet.
%
%   Name is the name of Did's author at position I (from 0). Fails when
%   there is none.
%
%   ==
%   ?- refgrove_get_author(107, 1, Name).
%   Name = 'S. Gupta'.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did, I;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_id2author(+AuthorId, ?Name) is semidet.
%
%   Name is the name of AuthorId. Fails outside the author table. To go
%   from a name to its ids, use refgrove_author_named/2 or
%   refgrove_author_prefix/2.
%
%   ==
%   ?- refgrove_id2author(9, Name).
%   Name = 'P. Erdős'.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for AuthorId;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_get_authors(+Did, ?AuthorIds) is det.
%
%   AuthorIds are Did's authors, last author first (the module's order;
%   refgrove_authors/2 gives the names first author first). The empty
%   list without a graph record.
%
%   ==
%   ?- refgrove_get_authors(107, Ids).
%   Ids = [3, 6, 4].
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_author_distance(+A, +B, ?Distance) is semidet.
%
%   Distance is 0.0 for every pair of authors: a placeholder.
%
%   ==
%   ?- refgrove_author_distance(1, 2, D).
%   D = 0.0.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for A, B;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_document(?Did) is nondet.
%
%   Did is a document with a graph record or words, in ascending order.
%   Semidet when Did is bound.
%
%   ==
%   ?- refgrove_document(150).
%   true.
%   ==
%
%   @error type_error(integer, X) for a bound argument that is no integer;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_cites(?Citing, ?Cited) is nondet.
%
%   Document Citing cites document Cited: one solution per citation.
%   With Citing bound, the citations come in the order of its record
%   (see refgrove_citations/2); otherwise in ascending order of Citing,
%   then record order. No choice point is left after the last solution;
%   with both bound it is semidet.
%
%   ==
%   ?- refgrove_cites(Citing, 115).
%   Citing = 119 ;
%   Citing = 127.
%   ==
%
%   @error type_error(integer, X) for a bound argument that is no integer;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_citations(+Citing, -Cited) is semidet.
%
%   Cited is the list of the documents that Citing cites, in the order
%   of its record: the solutions of refgrove_cites(Citing, X) in one
%   list. Fails without a graph record.
%
%   ==
%   ?- refgrove_citations(119, Cited).
%   Cited = [110, 104, 115].
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Citing;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_key_did(?Key, ?Did) is nondet.
%
%   Document Did has key Key ('' and '-' are no keys). Key may be given
%   as a string.
%
%   ==
%   ?- refgrove_key_did(erdos97, Did).
%   Did = 115.
%   ==
%
%   @error type_error(integer, Did) or type_error(atom, Key) for an
%          argument of the wrong kind; existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_author_document(?AuthorId, ?Did) is nondet.
%
%   AuthorId is an author of document Did: the documents of an author by
%   ascending DID, the authors of a document first author first, each
%   once. Semidet with both bound.
%
%   ==
%   ?- findall(D, refgrove_author_document(3, D), Ds).
%   Ds = [104, 107, 110, 119, 130, 133, 140].
%   ==
%
%   @error type_error(integer, X) for a bound argument that is no integer;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_title(+Did, -Words) is semidet.
%
%   Words are Did's title words. Fails without a graph record.
%
%   ==
%   ?- refgrove_title(107, Words).
%   Words = ['Memory', 'Efficient', 'Suffix', 'Arrays'].
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_abstract(+Did, -Words) is semidet.
%
%   Words are the words preprocessing wrote for Did's abstract. Fails
%   without words.
%
%   ==
%   ?- refgrove_abstract(107, [First|_]).
%   First = 'Suffix'.
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_authors(+Did, -Names) is semidet.
%
%   Names are Did's author names, first author first. Fails without a
%   graph record.
%
%   ==
%   ?- refgrove_authors(115, Names).
%   Names = ['P. Erdős', 'A. Rényi'].
%   ==
%
%   @error instantiation_error or type_error(integer, X) for Did;
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_author_named(+Name, ?AuthorId) is nondet.
%
%   AuthorId is an author whose name is Name ignoring case and accents
%   (so 'p. erdős', 'P. ERDŐS' and 'p. erdos' find 'P. Erdős'), by
%   ascending id. Name may be a string.
%
%   ==
%   ?- refgrove_author_named('a. lee', Id).
%   Id = 3.
%   ==
%
%   @error instantiation_error if Name is unbound; type_error(atom, Name)
%          if it is no text; type_error(integer, AuthorId);
%          existence_error(refgrove_data_set, loaded) before any load.

%!  refgrove_author_prefix(+Prefix, ?AuthorId) is nondet.
%
%   AuthorId is an author whose name starts with Prefix ignoring case and
%   accents, in the order of the folded names. Prefix may be a
%   string; '' gives every author.
%
%   ==
%   ?- findall(Name, (refgrove_author_prefix('p. e', Id), refgrove_id2author(Id, Name)), Names).
%   Names = ['P. Eades', 'P. Erdős'].
%   ==
%
%   @error instantiation_error if Prefix is unbound; type_error(atom, Prefix)
%          if it is no text; type_error(integer, AuthorId);
%          existence_error(refgrove_data_set, loaded) before any load.

:- multifile prolog:message//1.

prolog:message(refgrove(Lines)) -->
    message_lines(Lines).
prolog:message(error(syntax_error(refgrove_dump(File, Row, Column, Message)), _)) -->
    [ '~w:~w:~w: ~w'-[File, Row, Column, Message] ].
prolog:message(error(refgrove_io_error(Path, Reason), _)) -->
    [ '~w: ~w'-[Path, Reason] ].
prolog:message(error(refgrove_error(Reason), _)) -->
    [ 'refgrove: ~w'-[Reason] ].
prolog:message(error(existence_error(refgrove_data_set, loaded), _)) -->
    [ 'refgrove: no data set is loaded (load one with refgrove_load/1)' ].
prolog:message(error(existence_error(Type, Path), Context)) -->
    { nonvar(Context), Context = context(refgrove_load/1, _) },
    [ '~w ~w does not exist'-[Type, Path] ].

message_lines([]) --> [].
message_lines([Line]) --> !, [ '~s'-[Line] ].
message_lines([Line|Lines]) --> [ '~s'-[Line], nl ], message_lines(Lines).

		 /*******************************
		 *       CITATION NETWORK       *
		 *******************************/

/* The analyses of the citation network. The citation graph has the
   documents with a graph record as its nodes and one edge per distinct
   (citing, cited) pair of them, self-citations included; the co-author
   graph links two authors when both are authors of one graph record. What
   the analyses need is built on first use and released on reload.
*/

%!  refgrove_citation_count(+Did, -N) is semidet.
%
%   N is the number of distinct documents citing Did (its in-degree in
%   the citation graph). Fails when Did has no graph record.
%
%   ==
%   ?- refgrove_citation_count(101, N).
%   N = 4.
%   ==

%!  refgrove_pagerank(+Did, -Score) is semidet.
%
%   Score is the PageRank of Did: damping 0.85, uniform teleport, the
%   rank of documents citing nothing spread over all documents, scores
%   summing to 1, each within 1e-9 of the exact value. Fails when Did has
%   no graph record.
%
%   ==
%   ?- refgrove_pagerank(101, Score).
%   Score = 0.18188335914905276.
%   ==

%!  refgrove_ranked(+By, -Pairs, +Options) is det.
%
%   Pairs are the best documents ranked by `citations` (Score is the
%   citation count) or by `pagerank`, as Did-Score pairs, best first,
%   ties by ascending DID; refgrove_ranked_document/3 enumerates all of
%   them instead. Options:
%
%     - limit(+N)
%       At most N pairs (default 10); `limit(0)` gives all of them.
%     - total(-Total)
%       Total is the number of documents ranked before the limit, so
%       that a list cut by the limit shows as `length(Pairs, N), N < Total`.
%     - years(+From, +To)
%       Only documents whose year lies in From..To.
%
%   @error domain_error(refgrove_option, By) for another ranking.
%   @error domain_error(year_range, From-To) when From > To.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.
%
%   ==
%   ?- refgrove_ranked(citations, Pairs, [limit(2), total(Total)]).
%   Pairs = [110-6, 118-5],
%   Total = 32.
%   ==

refgrove_ranked(By, Pairs, Options) :-
    known_options(Options, [limit/1, total/1, years/2], refgrove_ranked/3),
    option(limit(Limit), Options, 10),
    must_be(nonneg, Limit),
    (   option(years(From, To), Options)
    ->  must_be(integer, From),
        must_be(integer, To),
        (   From =< To
        ->  true
        ;   domain_error(year_range, From-To)
        )
    ;   From = -0x80000000,
        To = 0x7fffffff
    ),
    asked_limit(Limit, Options, Max),
    as_public(refgrove_ranked/3, '$refgrove_ranked'(By, Max, From, To, All)),
    kept(Limit, Options, All, Pairs).

%!  refgrove_ranked_document(+By, -Did, -Score) is nondet.
%
%   Did and Score enumerate every document with a graph record on
%   backtracking, ranked as by refgrove_ranked/3, leaving no choice point
%   after the last.
%
%   @error domain_error(refgrove_option, By) for another ranking.
%
%   ==
%   ?- refgrove_ranked_document(pagerank, Did, Score).
%   Did = 101,
%   Score = 0.18188335914905276 ;
%   ...
%   ==

refgrove_ranked_document(By, Did, Score) :-
    as_public(refgrove_ranked_document/3,
              '$refgrove_ranked'(By, 0x7fffffff, -0x80000000, 0x7fffffff, Pairs)),
    member(Did-Score, Pairs).

% known_options(+Options, +Valid, +PI): Options is a list and every option
% is one of Valid (Name/Arity); another raises domain_error(oneof(Valid),
% Option) in the name of the predicate PI, never falling back to a default.
known_options(Options, Valid, PI) :-
    as_public(PI, must_be(list, Options)),
    forall(member(Option, Options), known_option(Option, Valid, PI)).

known_option(Option, _, PI) :-
    var(Option),
    !,
    throw(error(instantiation_error, context(PI, _))).
known_option(Option, Valid, _) :-
    compound(Option),
    compound_name_arity(Option, Name, Arity),
    memberchk(Name/Arity, Valid),
    !.
known_option(Option, Valid, PI) :-
    throw(error(domain_error(oneof(Valid), Option), context(PI, _))).

% as_public(+PI, :Goal): runs Goal, a foreign '$refgrove_...' predicate or
% a check, with its errors in the name of the public predicate PI.
as_public(PI, Goal) :-
    catch(Goal, error(Formal, Context), public_error(PI, Formal, Context)).

public_error(PI, Formal, context(_, Message)) :-
    !,
    throw(error(Formal, context(PI, Message))).
public_error(PI, Formal, _) :-
    throw(error(Formal, context(PI, _))).

% asked_limit(+Limit, +Options, -Max): how many answers to ask the foreign
% predicate for: all of them for limit 0 or when total(T) is among Options.
asked_limit(Limit, Options, Max) :-
    (   ( Limit =:= 0 ; option(total(_), Options) )
    ->  Max = 0x7fffffffffffffff
    ;   Max = Limit
    ).

% kept(+Limit, +Options, +All, -Kept): Kept is the first Limit of All (all
% for 0), and a total(T) among Options is the length of All.
kept(Limit, Options, All, Kept) :-
    length(All, Total),
    (   option(total(T), Options)
    ->  T = Total
    ;   true
    ),
    (   Limit > 0, Limit < Total
    ->  length(Kept, Limit),
        append(Kept, _, All)
    ;   Kept = All
    ).

%!  refgrove_collaboration_distance(+A, +B, -D) is semidet.
%
%   D is the number of links of a shortest path between the authors with
%   ids A and B in the co-author graph (0 when A == B). Fails when they
%   are unconnected or either id names no author.
%
%   ==
%   ?- refgrove_collaboration_distance(3, 14, D).
%   D = 3.
%   ==

%!  refgrove_collaboration_path(+A, +B, -Path) is semidet.
%
%   Path is a shortest collaboration path from author A to author B,
%   author ids and DIDs alternating, `[A, D1, X, D2, B]`: each DID is a
%   document that the authors beside it wrote together. Fails as
%   refgrove_collaboration_distance/3.
%
%   ==
%   ?- refgrove_collaboration_path(3, 14, Path).
%   Path = [3, 110, 7, 137, 13, 124, 14].
%   ==

%!  refgrove_citation_distance(+From, +To, -D) is semidet.
%!  refgrove_citation_distance(+From, +To, -D, +Options) is semidet.
%
%   D is the length of a shortest path from paper From to paper To
%   following citations from citing to cited, or, with the option
%   direction(both), ignoring their direction (direction(out) is the
%   default). Fails when To cannot be reached or either DID has no graph
%   record.
%
%   @error domain_error(refgrove_option, Dir) for another direction.
%   @error domain_error(oneof([direction/1]), Option) for another option.
%
%   ==
%   ?- refgrove_citation_distance(115, 110, D).
%   D = 1.
%   ==

refgrove_citation_distance(From, To, D) :-
    as_public(refgrove_citation_distance/3, '$refgrove_citation_distance'(From, To, out, D)).
refgrove_citation_distance(From, To, D, Options) :-
    known_options(Options, [direction/1], refgrove_citation_distance/4),
    option(direction(Dir), Options, out),
    as_public(refgrove_citation_distance/4, '$refgrove_citation_distance'(From, To, Dir, D)).

%!  refgrove_neighbourhood(+Did, -Nodes, -Edges, +Options) is semidet.
%
%   Nodes are the documents within K hops of Did as Did-Hops pairs: Did
%   itself first, then the closest, then by citation count descending,
%   then by ascending DID. Edges are the citations among them as
%   Citing-Cited pairs, by citing then cited DID. Fails when Did has no
%   graph record. Options:
%
%     - hops(+K)
%       How far to go (default 1).
%     - direction(+Dir)
%       Follow citations `out` (to the cited), `in` (to the citing) or
%       `both` ways (default).
%     - limit(+L)
%       At most L nodes (default 100); `limit(0)` gives all of them.
%     - total(-Total)
%       Total is the number of documents within K hops, however many
%       the limit kept.
%
%   @error domain_error(refgrove_option, Dir) for another direction.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.
%
%   ==
%   ?- refgrove_neighbourhood(105, Nodes, Edges, [direction(out)]).
%   Nodes = [105-0, 101-1],
%   Edges = [105-101].
%   ==

refgrove_neighbourhood(Did, Nodes, Edges, Options) :-
    PI = refgrove_neighbourhood/4,
    known_options(Options, [hops/1, direction/1, limit/1, total/1], PI),
    option(hops(Hops), Options, 1),
    must_be(nonneg, Hops),
    option(direction(Dir), Options, both),
    option(limit(Limit), Options, 100),
    must_be(nonneg, Limit),
    (   option(total(Total), Options)
    ->  as_public(PI, '$refgrove_neighbourhood'(Did, Hops, Dir, 0x7fffffffffffffff, All, _)),
        length(All, Total)
    ;   true
    ),
    asked_limit(Limit, [], Max),
    as_public(PI, '$refgrove_neighbourhood'(Did, Hops, Dir, Max, Nodes, Edges)).

%!  refgrove_similar(+Did, +By, -Pairs, +Options) is semidet.
%
%   Pairs are the documents most like Did as Did-Score pairs, by score
%   descending, then by ascending DID, Did itself left out. By
%   `cocitation` counts the distinct documents citing both; by
%   `coupling` the distinct documents both cite. Fails when Did has no
%   graph record. Options:
%
%     - measure(+Measure)
%       `count` (default: Score is the count, an integer), `cosine`
%       (Salton's cosine: the count divided by the square root of the
%       product of the two documents' citing, or cited, documents) or
%       `jaccard` (the count divided by the size of their union); both
%       floats, which do not favour highly cited documents as counts do.
%     - limit(+N)
%       At most N pairs (default 10); `limit(0)` gives all of them.
%     - total(-Total)
%       Total is the number of similar documents however many the limit
%       kept.
%
%   @error domain_error(refgrove_option, By) for another measure.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.
%
%   ==
%   ?- refgrove_similar(110, coupling, Pairs, [limit(2)]).
%   Pairs = [118-1, 119-1].
%   ==

refgrove_similar(Did, By, Pairs, Options) :-
    known_options(Options, [measure/1, limit/1, total/1], refgrove_similar/4),
    option(measure(Measure), Options, count),
    option(limit(Limit), Options, 10),
    must_be(nonneg, Limit),
    asked_limit(Limit, Options, Max),
    as_public(refgrove_similar/4, '$refgrove_similar'(Did, By, Measure, Max, All)),
    kept(Limit, Options, All, Pairs).

%!  refgrove_component(+Did, -Id, -Size) is semidet.
%
%   Id is the weakly connected component of the citation graph holding
%   Did and Size its number of documents. Components are numbered from 0
%   by size descending, then by their smallest DID, so 0 is the largest.
%   Fails when Did has no graph record.
%
%   ==
%   ?- refgrove_component(110, Id, Size).
%   Id = 0,
%   Size = 31.
%   ==


		 /*******************************
		 *        SEARCH BY WORDS       *
		 *******************************/

%!  refgrove_search(+Query, -Did) is nondet.
%
%   True when document Did holds every term of Query in its title or
%   abstract, enumerating the documents best first by their BM25 score
%   (equal scores by ascending Did).
%
%   Query is an atom or string of terms separated by white space. A term
%   matches the words with the same English stem (`holes` finds `hole`
%   and `holes`), ignoring case and accents (Unicode case folding,
%   composed and decomposed forms alike); a term ending in `*` matches
%   every word that starts with the rest. Words in double quotes form a
%   phrase: they must follow one another in that order, in the title or
%   in the abstract (`'"black hole" entropy'`). Before any
%   refgrove_load/1 nothing matches. For example:
%
%   ==
%   ?- refgrove_search('graph*', Did).
%   Did = 134 ;
%   Did = 115 ;
%   ...
%   ==
%
%   @error instantiation_error if Query is unbound.
%   @error type_error(text, Query) if Query is neither atom nor string.
%   @error domain_error(refgrove_query, Query) if Query has no term, a
%   term is a lone `*`, it has more than 1,024 distinct terms, a quote
%   is left open or a phrase of several words holds a `*`.

refgrove_search(Query, Did) :-
    as_public(refgrove_search/2, '$refgrove_search'(Query, and, false, 0, Hits, _)),
    member(Did-_, Hits).

%!  refgrove_search(+Query, -Hits, +Options) is det.
%
%   Hits is the list of Did-Score pairs of the documents matching Query
%   (see refgrove_search/2), best first. Options:
%
%     - limit(+N)
%       At most N hits (default 10); `limit(0)` gives all of them.
%     - mode(+Mode)
%       `and` (default): documents holding every term; `or`: documents
%       holding at least one.
%     - exact(+Bool)
%       `true`: terms match words as they are, not by their stems
%       (default `false`).
%     - total(-Total)
%       Total is the number of documents matching, however many the
%       limit keeps.
%
%   For example:
%
%   ==
%   ?- refgrove_search("random graphs", Hits, [limit(2), mode(or)]).
%   Hits = [115-5.730701714437318, 134-2.885238483497622].
%   ==
%
%   @error instantiation_error, type_error(text, Query) and
%   domain_error(refgrove_query, Query) as refgrove_search/2.
%   @error type_error(nonneg, N) for a limit that is no natural number.
%   @error type_error(oneof([and,or]), Mode) for another mode.
%   @error type_error(boolean, Exact) for an exact/1 that is neither `true`
%   nor `false`.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.

refgrove_search(Query, Hits, Options) :-
    known_options(Options, [limit/1, mode/1, exact/1, total/1], refgrove_search/3),
    option(limit(Limit), Options, 10),
    must_be(nonneg, Limit),
    option(mode(Mode), Options, and),
    must_be(oneof([and, or]), Mode),
    option(exact(Exact), Options, false),
    must_be(boolean, Exact),
    as_public(refgrove_search/3, '$refgrove_search'(Query, Mode, Exact, Limit, Hits, Total)),
    option(total(Total), Options, _).


		 /*******************************
		 *     THE STRUCTURE OF A FIELD *
		 *******************************/

/* Clusters (research fronts), the main path, author impact and timelines.
   What they build is built on first use and released on reload, as the
   analyses of the network are.
*/

%!  refgrove_clusters(+Graph, -Clusters, +Options) is det.
%
%   Clusters are the clusters of Graph found by the Leiden algorithm, as
%   terms cluster(Id, Size, Label), numbered from 0 by size (members)
%   descending. Label is the list of the cluster's most characteristic
%   title words (at most three, best first: frequent in the cluster, rare
%   outside it). Graph is `citation` (the citation graph taken undirected),
%   `cocitation` or `coupling` (documents linked by how many documents
%   cite both, or both cite) or `coauthor` (authors linked by their joint
%   documents; its members are author ids). The same options give the same
%   clusters. Options:
%
%     - quality(+Quality)
%       `modularity` (default) or `cpm` (the constant Potts model).
%     - resolution(+R)
%       Larger for more, smaller clusters (default 1.0).
%     - seed(+S)
%       The seed of the random choices (default 1).
%     - min_citations(+N), min_weight(+W)
%       For `cocitation` and `coupling`: the documents with at least N
%       citations (default 1), linked by at least W (default 1).
%     - iterations(+N)
%       How many iterations of the algorithm (default 10; 0: until one
%       moves nothing, at most 1000, which on large sets takes long).
%     - modularity(-M)
%       M is the modularity of the clusters (resolution 1).
%
%   refgrove_cluster/3 then reads the clustering these options made.
%
%   ==
%   ?- refgrove_clusters(citation, [C|_], []).
%   C = cluster(0, 10, [data, structures, amortized]).
%   ==
%
%   @error domain_error(refgrove_option, Graph) for another graph, and
%   the same for another quality.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.

refgrove_clusters(Graph, Clusters, Options) :-
    cluster_options(Graph, Options, refgrove_clusters/3, Term),
    as_public(refgrove_clusters/3, '$refgrove_clusters'(Term, Clusters, Modularity)),
    option(modularity(Modularity), Options, _),
    with_mutex(refgrove_clusters,
               ( retractall(last_cluster_options(Graph, _)),
                 assertz(last_cluster_options(Graph, Term)) )).

:- dynamic last_cluster_options/2.

cluster_options(Graph, Options, PI, cluster_options(Graph, Quality, Resolution, Seed, MinCitations,
                                                    MinWeight, Iterations)) :-
    must_be(atom, Graph),
    known_options(Options, [quality/1, resolution/1, seed/1, min_citations/1, min_weight/1,
                            iterations/1, modularity/1], PI),
    option(quality(Quality), Options, modularity),
    option(resolution(Resolution), Options, 1.0),
    option(seed(Seed), Options, 1),
    option(min_citations(MinCitations), Options, 1),
    option(min_weight(MinWeight), Options, 1),
    option(iterations(Iterations), Options, 10).

%!  refgrove_cluster(+Graph, ?Member, ?Id) is nondet.
%
%   Member (a DID, or an author id for `coauthor`) is in cluster Id of
%   Graph, in the clustering of the last refgrove_clusters/3 call on
%   Graph (in any thread), or with the default options when there was
%   none. Enumerates the members in ascending order when Member is
%   unbound; fails for a Member outside the graph.
%
%   ==
%   ?- refgrove_cluster(citation, 110, Id).
%   Id = 1.
%   ==

refgrove_cluster(Graph, Member, Id) :-
    (   last_cluster_options(Graph, Term)
    ->  true
    ;   cluster_options(Graph, [], refgrove_cluster/3, Term)
    ),
    (   var(Member)
    ->  as_public(refgrove_cluster/3, '$refgrove_cluster_members'(Term, Pairs)),
        member(Member-Id, Pairs)
    ;   as_public(refgrove_cluster/3, '$refgrove_cluster_of'(Term, Member, Id0)),
        Id = Id0
    ).

%!  refgrove_main_path(-Dids) is det.
%
%   Dids is the global main path of the citation graph, from a document
%   that no document cites to one that cites none, each citing the next:
%   the path with the largest sum of search path count weights (an
%   edge's weight is the number of paths from a source to a sink through
%   it). Documents citing each other in a cycle are taken together, in
%   ascending DID order.
%
%   ==
%   ?- refgrove_main_path(Dids).
%   Dids = [145, 137, 127, 119, 115, 110, 107, 105, 101].
%   ==

%!  refgrove_h_index(+AuthorId, -H) is semidet.
%
%   H is the h-index of the author: the largest H such that H of their
%   documents have at least H citations each within the set. Fails for an
%   id outside the author table.
%
%   ==
%   ?- refgrove_h_index(3, H).
%   H = 3.
%   ==

%!  refgrove_author_ranked(+By, -Pairs, +Options) is det.
%
%   Pairs are the authors as AuthorId-Value pairs, best first, ties by
%   ascending id, by `h_index` (or `'h-index'`), `citations` (the
%   citations their documents received) or `documents`. Options: limit(+N), at most N pairs
%   (default 10; `limit(0)` gives all of them); total(-Total), the number
%   of authors however many the limit kept.
%
%   ==
%   ?- refgrove_author_ranked(h_index, Pairs, [limit(2)]).
%   Pairs = [3-3, 4-2].
%   ==
%
%   @error domain_error(refgrove_option, By) for another measure.
%   @error domain_error(oneof(Valid), Option) for an option not in Valid.

refgrove_author_ranked(By, Pairs, Options) :-
    known_options(Options, [limit/1, total/1], refgrove_author_ranked/3),
    option(limit(Limit), Options, 10),
    must_be(nonneg, Limit),
    must_be(atom, By),
    (   By == h_index
    ->  Measure = 'h-index'
    ;   Measure = By
    ),
    asked_limit(Limit, Options, Max),
    as_public(refgrove_author_ranked/3, '$refgrove_author_ranked'(Measure, Max, All)),
    kept(Limit, Options, All, Pairs).

%!  refgrove_citations_by_year(+Of, -YearCounts) is semidet.
%
%   YearCounts are the citations that Of received per year of the citing
%   document, as Year-Count pairs by ascending year (citing documents
%   without a year left out). Of is a DID, or author(AuthorId) for the
%   citations of all the author's documents. Fails when the DID has no
%   graph record or the id names no author.
%
%   ==
%   ?- refgrove_citations_by_year(110, YearCounts).
%   YearCounts = [1997-2, 1998-1, 1999-1, 2000-1, 2001-1].
%   ==

refgrove_citations_by_year(author(Author), YearCounts) :-
    !,
    as_public(refgrove_citations_by_year/2, '$refgrove_author_citations_by_year'(Author, YearCounts)).
refgrove_citations_by_year(Did, YearCounts) :-
    as_public(refgrove_citations_by_year/2, '$refgrove_citations_by_year'(Did, YearCounts)).
