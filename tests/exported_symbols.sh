#!/usr/bin/env bash
# Fails unless the library (the argument) shows its clients the exported classes and nothing else.
set -euo pipefail

families='(RulesEngine::((Entering|Timeout)?(State)?Event|EvaluationContext|FiniteStateMachine|State|Transition|Filter|Action'
families+='|FuncFilter|FuncAction|(EvtAndContext|ReturnValue)Comparator<.*>)'
families+='|VIG::(VIGParserConfig|VIGIParser<.*>|VIG(Response|Config|ConfigPayload|FiniteStateMachine)Parser|VIGConfig'
families+='|VIGConfigPayload|FilterOperand|\w+ActionFunctionFactory'
families+='|VIGTriggerVelora(Cpu)?FuncActionFactoryImpl|PseudoRandomDoublePureFunctionImpl|VIGManager'
families+='|_createTyped(EvtAndContextComparator|PureFuncReturnValueComparator)<.*>))(::|\(|$)'

symbols=$(nm --dynamic --defined-only --demangle "$1" | cut -d ' ' -f 3-)
foreign=$(grep -vE "Brenta::OS::$families" <<<"$symbols" || true)
if [ -n "$foreign" ]; then
    echo "visible, but not meant to be:"
    echo "$foreign"
    exit 1
fi
machine=RulesEngine::FiniteStateMachine
for name in VIG::VIGManager::VIGManager VIG::FilterOperand::fromJson VIG::PseudoRandomDoublePureFunctionImpl::get \
    VIG::VIGResponseParser::parseFromString $machine::{FiniteStateMachine,getOrCreateStateByName,getStateByName} \
    $machine::{addTransition,start,onEvent,enterState,getCurrentState,getAllListeningEventTypes,getContext,setContext} \
    RulesEngine::State::{State,addTransition,onEvent,getListeningEventTypes,getName} \
    RulesEngine::Transition::{Transition,onEvent,getEventType}; do
    grep -qF "Brenta::OS::$name(" <<<"$symbols" || { echo "missing: $name"; exit 1; }
done
[ "$(grep -c '^vtable for .*Comparator<' <<<"$symbols")" -eq 36 ] || { echo "comparators are missing"; exit 1; }
echo "$(wc -l <<<"$symbols") symbols, all of them of exported classes"
