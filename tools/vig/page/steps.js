'use strict';

// It shows what a machine did with an event, in the words of the tool's explanations.

/**
 * Makes an element that shows the children: texts are only ever shown.
 * @param {string} tag
 * @param {string} className
 * @param {(Node | string)[]} children
 */
function make(tag, className, ...children) {
    const element = document.createElement(tag);
    element.className = className;
    element.append(...children);
    return element;
}

/**
 * Makes an element whose text keeps its direction to itself.
 * @param {string} className
 * @param {string} text
 */
function makeText(className, text) {
    return make('bdi', className, text);
}

/**
 * @param {string} className
 * @param {string} text
 * @param {string} title
 * @param {() => void} onClick
 */
function makeButton(className, text, title, onClick) {
    const button = make('button', className, makeText('', text));
    button.setAttribute('type', 'button');
    button.title = title;
    button.addEventListener('click', onClick);
    return button;
}

/**
 * Makes a section of all that a machine did with an event. A click on a transition or filter chooses it.
 * @param {Recording} recording
 * @param {number} index of the machine
 * @param {number} position
 * @param {(machine: number, choice: Choice) => void} onChoose
 */
function makeTurn(recording, index, position, onChoose) {
    const machine = recording.machines[index];
    const lines = recording.linesAt(position).filter((line) => line.machine === index);
    const comparisons = machine.comparisonsAt(position);
    const section = make('section', 'turn', make('h3', '', 'machine ', makeText('', machine.label)));
    section.dataset.machine = String(index);
    /** @param {number} step */
    const addLines = (step) => section.append(...lines.filter((line) => line.step === step).map(makeLine));
    addLines(0);
    machine.stepsAt(position).forEach((step, at) => {
        section.append(makeStep(machine, step, comparisons[at], (choice) => onChoose(index, choice)));
        addLines(at + 1);
    });
    const before = machine.stateBefore(position);
    const after = machine.stateAfter(position);
    // Two long names may look the same.
    if (before !== after) {
        section.append(make('div', 'move', makeText('', machine.states[before]), ' -> ', makeText('', machine.states[after])));
    }
    return section;
}

/**
 * @param {Machine} machine
 * @param {Step} step
 * @param {Comparison[][]} comparisons
 * @param {(choice: Choice) => void} onChoose
 */
function makeStep(machine, step, comparisons, onChoose) {
    const type = machine.recording.data.types[step.type];
    const root = make('div', 'root', makeText('', type), ' in state ', makeText('', machine.states[step.state]));
    root.append(step.attempts.length === 0 ? ': no transition listens' : '');
    const element = make('div', 'step', root);
    step.attempts.forEach((attempt, index) => {
        element.append(...makeAttempt(machine, attempt, comparisons[index], onChoose));
    });
    return element;
}

/**
 * @param {Machine} machine
 * @param {Attempt} attempt
 * @param {Comparison[]} comparisons
 * @param {(choice: Choice) => void} onChoose
 */
function makeAttempt(machine, attempt, comparisons, onChoose) {
    const transition = machine.transitions[attempt.transition];
    const outcome = attempt.fired ? 'fires' : `stopped by filter ${attempt.made} of ${transition.filters.length}`;
    const name = makeButton('name', transition.name, `choose ${transition.path}`,
        () => onChoose({ transition: attempt.transition, filter: null }));
    const head = make('div', attempt.fired ? 'attempt fires' : 'attempt', name, ' -> ',
        makeText('', machine.states[transition.to]), `: ${outcome}`);
    const rows = comparisons.map((comparison, filter) =>
        makeComparison(comparison, () => onChoose({ transition: attempt.transition, filter })));
    const actions = attempt.fired ? transition.actions : [];
    return [head, ...rows,
        ...actions.map((action) => make('div', 'action', make('span', 'verdict', 'runs'), ' ', makeText('', action)))];
}

/**
 * @param {Comparison} comparison
 * @param {() => void} onChoose
 */
function makeComparison({ filter, holds, left, right }, onChoose) {
    const verdict = holds ? 'yes' : 'no';
    return make('div', `comparison ${verdict}`, make('span', 'verdict', verdict), ' ',
        makeButton('condition', filter.condition, 'choose this filter', onChoose), ' ',
        make('span', 'values', makeText('', left), ` ${filter.operator} `, makeText('', right)));
}

/** @param {Line} line */
function makeLine({ isTrigger, texts }) {
    return make('div', isTrigger ? 'trigger' : 'log',
        ...texts.flatMap((text, index) => [make('div', isTrigger && index === 0 ? 'name' : 'detail', text), '\n']));
}
