% Runs the SWI-Prolog session that a documentation page shows, as written:
% the first ``` block that starts with "$ swipl". Each "?- Goal." must give
% the answers shown below it, as the toplevel prints them (the bindings of
% every solution, " ;" between solutions, "." after the last one when it
% leaves no choice point, "false." when there is none), and print the
% messages shown ("% ..." lines; a line "..." stands for any number of
% them; lines are compared without their trailing blanks, which a terminal
% does not show). /tmp/ in the session stands for a fresh directory of the test's
% own. Run from the source tree, with the pack attached:
%   swipl docs_session_test.pl PAGE.md

:- use_module(library(readutil)).
:- use_module(library(lists)).
:- use_module(library(apply)).
:- use_module(library(filesex)).

:- initialization(main, main).

:- dynamic heard/1.

:- multifile user:message_hook/3.
user:message_hook(refgrove(Lines), informational, _) :-
    forall(member(Line, Lines), assertz(heard(Line))).

main :-
    current_prolog_flag(argv, [Page]),
    set_prolog_flag(verbose, normal),
    session(Page, Steps),
    (   Steps == []
    ->  format("FAIL: no session (a ``` block starting with \"$ swipl\") in ~w~n", [Page]),
        halt(1)
    ;   true
    ),
    tmp_file(session, Tmp),
    make_directory(Tmp),
    atom_concat(Tmp, '/', Fresh),
    foldl(run_step(Fresh), Steps, 0, Failures),
    delete_directory_and_contents(Tmp),
    length(Steps, N),
    format("~w of ~w steps failed~n", [Failures, N]),
    (   Failures =:= 0 -> true ; halt(1) ).

% The steps of the session: step(Query, Expected) with the lines shown
% below the query up to the next blank line.
session(Page, Steps) :-
    read_file_to_string(Page, Text, []),
    split_string(Text, "\n", "", Lines),
    append(_, ["```", "$ swipl"|Rest], Lines),
    append(Block, ["```"|_], Rest),
    !,
    steps(Block, Steps).
session(_, []).

steps([], []).
steps([Line|Lines], [step(Query, Expected)|Steps]) :-
    string_concat("?- ", Query, Line),
    !,
    append(Expected, After, Lines),
    ( After = [""|Next] ; After == [], Next = [] ),
    !,
    steps(Next, Steps).
steps([_|Lines], Steps) :-
    steps(Lines, Steps).

run_step(Fresh, step(Query0, Expected0), Failures0, Failures) :-
    maplist(fresh_tmp(Fresh), [Query0|Expected0], [Query|Expected]),
    partition([L]>>(sub_string(L, 0, _, _, "% ") ; L == "..."), Expected, Messages, Answer),
    retractall(heard(_)),
    catch(answers(Query, Shown), E, format(string(Shown), "raised ~q", [E])),
    findall(L, (heard(H), format(string(L0), "% ~s", [H]), split_string(L0, "", " ", [L])), Heard),
    atomic_list_concat(Answer, '\n', AnswerText),
    (   atom_string(AnswerText, Shown), matches(Messages, Heard)
    ->  Failures = Failures0
    ;   format("FAIL: ?- ~s~n--- shown~n~w~n~w~n--- actual~n~w~n~s~n",
               [Query, Messages, AnswerText, Heard, Shown]),
        Failures is Failures0 + 1
    ).

fresh_tmp(Fresh, Line0, Line) :-
    atomic_list_concat(Parts, '/tmp/', Line0),
    atomic_list_concat(Parts, Fresh, Atom),
    atom_string(Atom, Line).

% Shown messages against heard ones; "..." matches any run of lines.
matches([], []).
matches(["..."|Shown], Heard) :-
    !,
    append(_, Rest, Heard),
    matches(Shown, Rest).
matches([Line|Shown], [Line|Heard]) :-
    matches(Shown, Heard).

% The toplevel's answers to Query, as one string.
answers(Query, Shown) :-
    term_string(Goal, Query, [variable_names(Names)]),
    findall(Text-Det,
            ( call_cleanup(Goal, Det = true), bindings_text(Names, Text) ),
            Solutions),
    solutions_text(Solutions, Shown).

solutions_text([], "false.").
solutions_text([Text-Det], Shown) :-
    !,
    (   Det == true
    ->  format(string(Shown), "~s.", [Text])
    ;   format(string(Shown), "~s ;~nfalse.", [Text])
    ).
solutions_text([Text-_|More], Shown) :-
    solutions_text(More, Rest),
    format(string(Shown), "~s ;~n~s", [Text, Rest]).

bindings_text(Names, Text) :-
    include([Name = _]>>(\+ sub_atom(Name, 0, _, _, '_')), Names, Visible),
    exclude([_ = Value]>>var(Value), Visible, Bound),
    (   Bound == []
    ->  Text = "true"
    ;   maplist([Name = Value, Line]>>format(string(Line), "~w = ~W", [Name, Value,
                                             [quoted(true), portray(true), spacing(next_argument)]]),
                Bound, Lines),
        atomic_list_concat(Lines, ',\n', Atom),
        atom_string(Atom, Text)
    ).
