#!/usr/bin/env bash
# Installs a build (the argument, its folder) for a user who keeps all from others, moves it, and fails unless exactly
# what belongs to it is there, readable by all, and works.
set -euo pipefail

build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
umask 077
cd "$work"
for component in library development tool; do
    # Names the components so that the list of an earlier installation by root is left alone.
    cmake --install "$build" --prefix first --component "$component" >/dev/null
done
prefix="$work/some where"
mv first "$prefix"
cd "$prefix"

diff - <(find . ! -type d ! -path './include/vig/platform/*' | sed -E 's/(so\.[0-9]+)\..*/\1.x/; s/-[a-z]*(\.cmake)/-*\1/' | LC_ALL=C sort) <<'END'
./bin/vig
./include/vig/os/Export.h
./include/vig/rulesengine/Action.h
./include/vig/rulesengine/Comparators.h
./include/vig/rulesengine/EnteringStateEvent.h
./include/vig/rulesengine/EvaluationContext.h
./include/vig/rulesengine/Event.h
./include/vig/rulesengine/EventType.h
./include/vig/rulesengine/Filter.h
./include/vig/rulesengine/FiniteStateMachine.h
./include/vig/rulesengine/FuncAction.h
./include/vig/rulesengine/FuncFilter.h
./include/vig/rulesengine/ShortText.h
./include/vig/rulesengine/State.h
./include/vig/rulesengine/TimeoutEvent.h
./include/vig/rulesengine/Transition.h
./include/vig/vig/VIGManager.h
./include/vig/vig/actions/VIGActionFunction.h
./include/vig/vig/actions/VIGActionFunctionFactory.h
./include/vig/vig/parsers/VIGConfig.h
./include/vig/vig/parsers/VIGConfigPayload.h
./include/vig/vig/parsers/VIGIParser.h
./include/vig/vig/parsers/VIGParseError.h
./include/vig/vig/parsers/VIGParseResult.h
./include/vig/vig/parsers/VIGParserConfig.h
./include/vig/vig/parsers/VIGResponseParser.h
./lib/cmake/vig/vigConfig-*.cmake
./lib/cmake/vig/vigConfig.cmake
./lib/cmake/vig/vigConfigVersion.cmake
./lib/libvig-host.so
./lib/libvig-host.so.1
./lib/libvig-host.so.1.x
./lib/libvig.so
./lib/libvig.so.1
./lib/libvig.so.1.x
./lib/pkgconfig/vig-host.pc
./lib/pkgconfig/vig.pc
./share/bash-completion/completions/vig
./share/man/man1/vig.1
./share/zsh/site-functions/_vig
END
[ -z "$(find . ! -type l \( ! -perm -444 -o -perm /022 \))" ]
# No text and no run path leads back into the tree, though debug information may. Each public header can be read alone.
! grep -rlIF "$build" . || exit 1
! readelf --dynamic bin/vig lib/*.so.?.*.* | grep -E 'R(UN)?PATH' | grep -vE '\[[$]ORIGIN' || exit 1
(cd include/vig && find . -name '*.h' ! -path './platform/*' -printf '#include "%P"\n') | while read -r include; do
    c++ -std=c++20 -Wall -Wextra -Werror -Iinclude/vig -fsyntax-only -x c++ - <<<"$include"
done

[[ $(bin/vig --version) == vig\ * ]]
# The library is the one beside it, not that of the build.
[[ $(ldd bin/vig) == *"=> $prefix/bin/../lib"* ]]
[[ $(groff -man -Tascii share/man/man1/vig.1) == *"vig run"* ]]
bash -c '. share/bash-completion/completions/vig && complete -p vig >/dev/null'
[[ $(head -n 1 share/zsh/site-functions/_vig) == "#compdef vig" ]]
