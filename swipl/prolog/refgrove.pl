:- module(refgrove,
          [ refgrove_hello/0,
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
            refgrove_key_did/2,           % ?Key, ?Did
            refgrove_author_document/2,   % ?AuthorId, ?Did
            refgrove_title/2,             % +Did, -Words
            refgrove_abstract/2,          % +Did, -Words
            refgrove_authors/2            % +Did, -Names (first author first)
          ]).

/** <module> A citation database of scientific documents

The data set is preprocessed from its text dumps by refgrove_preproc/2,
loaded by refgrove_load/1 and queried by the other predicates. Texts come
as atoms (UTF-8 decoded where the bytes are valid UTF-8, one character per
byte otherwise), absent documents and items make a query fail, and inputs
of the wrong kind raise the usual instantiation and type errors.

Directory arguments are prefixes to which the file names are appended, so
they normally end in `/`.

Messages of preprocessing and loading are printed as informational messages
refgrove(Lines): `set_prolog_flag(verbose, silent)` silences them and
message_hook/3 sees them.
*/

:- use_foreign_library(foreign(refgrove4pl)).

:- multifile prolog:message//1.

prolog:message(refgrove(Lines)) -->
    message_lines(Lines).
prolog:message(error(syntax_error(refgrove_dump(File, Row, Column, Message)), _)) -->
    [ '~w:~w:~w: ~w'-[File, Row, Column, Message] ].
prolog:message(error(refgrove_io_error(Path, Reason), _)) -->
    [ '~w: ~w'-[Path, Reason] ].
prolog:message(error(refgrove_error(Reason), _)) -->
    [ 'refgrove: ~w'-[Reason] ].

message_lines([]) --> [].
message_lines([Line]) --> !, [ '~s'-[Line] ].
message_lines([Line|Lines]) --> [ '~s'-[Line], nl ], message_lines(Lines).


		 /*******************************
		 *        SEARCH BY WORDS       *
		 *******************************/

:- export(refgrove_search/2).             % +Query, -Did
:- export(refgrove_search/3).             % +Query, -Hits, +Options

:- use_module(library(error), [must_be/2]).
:- use_module(library(lists), [member/2]).
:- use_module(library(option), [option/3]).

%!  refgrove_search(+Query, -Did) is nondet.
%
%   True when document Did holds every term of Query in its title or
%   abstract, enumerating the documents best first by their BM25 score
%   (equal scores by ascending Did).
%
%   Query is an atom or string of terms separated by white space. A term
%   matches a word equal to it ignoring case (ASCII letters and the Latin
%   letters of Latin-1 and Latin Extended-A); a term ending in `*`
%   matches every word that starts with the rest. Before any
%   refgrove_load/1 nothing matches. For example:
%
%   ```
%   ?- refgrove_search('graph*', Did).
%   Did = 134 ;
%   Did = 115 ;
%   ...
%   ```
%
%   @error instantiation_error if Query is unbound.
%   @error type_error(text, Query) if Query is neither atom nor string.
%   @error domain_error(refgrove_query, Query) if Query has no term, a
%   term is a lone `*` or it has more than 1,024 distinct terms.

refgrove_search(Query, Did) :-
    '$refgrove_search'(Query, and, 0, Hits),
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
%
%   For example:
%
%   ```
%   ?- refgrove_search("random graphs", Hits, [limit(2), mode(or)]).
%   Hits = [115-5.9498581206548184, 145-2.3694336634643034].
%   ```
%
%   @error instantiation_error, type_error(text, Query) and
%   domain_error(refgrove_query, Query) as refgrove_search/2.
%   @error type_error(nonneg, N) for a limit that is no natural number.
%   @error type_error(oneof([and,or]), Mode) for another mode.

refgrove_search(Query, Hits, Options) :-
    must_be(list, Options),
    option(limit(Limit), Options, 10),
    must_be(nonneg, Limit),
    option(mode(Mode), Options, and),
    must_be(oneof([and, or]), Mode),
    '$refgrove_search'(Query, Mode, Limit, Hits).
