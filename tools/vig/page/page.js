'use strict';

// It is the page: what is looked at, and what keys, buttons, links and the search make of it.

/** @param {string} id */
function element(id) {
    return /** @type {HTMLElement} */ (document.getElementById(id));
}

const kSearch = /** @type {HTMLInputElement} */ (element('search'));
const kChooser = /** @type {HTMLSelectElement} */ (element('chooser'));
const kKeys = /** @type {HTMLDialogElement} */ (element('keys'));

// Browsers refuse to change the address more often.
const kLinkInterval = 350;

const kTooOld = 'This browser is too old for this page: it has no DecompressionStream, which unpacks the recording.';
const kDamaged = 'The recording in this page is damaged and cannot be shown; a new copy of the file may help.';

const kEmpty = 'There is nothing to show: no event was chosen, or there is no machine.';

/**
 * Returns the position behind, or before, the given one in a sorted list; or none.
 * @param {NumberArray} positions
 * @param {number} position
 * @param {number} direction
 * @returns {number | undefined}
 */
function neighbour(positions, position, direction) {
    return direction > 0 ? positions[lowerBound(positions, position + 1)] : positions[lowerBound(positions, position) - 1];
}

/**
 * @param {number} count
 * @param {string} what
 */
function counted(count, what) {
    return count === 0 ? '' : `, ${count} ${what}${count === 1 ? '' : 's'}`;
}

class Page {
    /** @param {PageData} data */
    constructor(data) {
        this.data = data;
        /** @type {Recording | null} */
        this.recording = null;
        this.index = -1;  // of the recording
        this.requests = 0;
        this.loading = Promise.resolve();
        this.position = 0;
        this.machine = 0;
        /** @type {Choice} */
        this.choice = { transition: 0, filter: null };
        /** @type {number[]} */
        this.found = [];
        /** @type {string | null} */
        this.unknown = null;  // that the search names
        this.linkTimer = 0;
        this.lastLink = -kLinkInterval;
        this.picture = new Picture(element('picture'));
        this.timeline = new Timeline(element('timeline'), (position, machine) => this.go(position ?? this.position, machine));
    }

    start() {
        document.title = this.data.title;
        element('title').textContent = this.data.title;
        this.#showNote();
        element('program').textContent = this.data.program;
        const { recordings } = this.data;
        element('recording').append(...recordings.map(({ name }, index) =>
            makeOption(String(index), name || `recording ${index + 1}`)));
        element('recordings').hidden = recordings.length < 2;
        this.#listen();
        this.follow();
    }

    #showNote() {
        const note = /** @type {HTMLDetailsElement} */ (element('note'));
        note.hidden = this.data.note === '';
        note.open = this.data.recordings.length === 0;
        note.querySelector('summary')?.append(this.data.summary);
        note.querySelector('pre')?.append(this.data.note);
    }

    #listen() {
        const recordingSelect = /** @type {HTMLSelectElement} */ (element('recording'));
        recordingSelect.addEventListener('change', () => this.load(Number(recordingSelect.value), null, null));
        kChooser.addEventListener('change', () => {
            const [transition, filter] = kChooser.value.split('.').map(Number);
            this.choose(this.machine, { transition, filter: filter ?? null });
        });
        kSearch.addEventListener('input', () => this.search());
        for (const [id, act] of Object.entries(this.#commands())) {
            element(id).addEventListener('click', act);
        }
        addEventListener('hashchange', () => this.follow());
        document.addEventListener('keydown', (event) => this.#press(event));
        // Paper is light, also where the screen is dark.
        addEventListener('beforeprint', () => this.#preparePrint(true));
        addEventListener('afterprint', () => this.#preparePrint(false));
    }

    /**
     * Returns what each button does.
     * @returns {Record<string, () => void>}
     */
    #commands() {
        return {
            'first': () => this.go(0, this.machine),
            'previous': () => this.#step(-1),
            'next': () => this.#step(1),
            'last': () => this.go(Infinity, this.machine),
            'previous-machine': () => this.go(this.position, this.machine - 1),
            'next-machine': () => this.go(this.position, this.machine + 1),
            'previous-move': () => this.#jump((machine) => machine.moves, -1, 'move'),
            'next-move': () => this.#jump((machine) => machine.moves, 1, 'move'),
            'previous-trigger': () => this.#jump((machine) => machine.triggers, -1, 'trigger'),
            'next-trigger': () => this.#jump((machine) => machine.triggers, 1, 'trigger'),
            'previous-log': () => this.#jumpToLog(-1),
            'next-log': () => this.#jumpToLog(1),
            'previous-tried': () => this.#jumpToTried(-1),
            'next-tried': () => this.#jumpToTried(1),
            'nearest': () => this.#jumpToNearest(),
            'larger': () => this.picture.zoom(1),
            'smaller': () => this.picture.zoom(-1),
            'fit': () => this.picture.zoom(0),
            'zoom-in': () => this.timeline.zoomAtCursor(2),
            'zoom-out': () => this.timeline.zoomAtCursor(0.5),
            'zoom-all': () => this.timeline.showAll(),
            'help': () => kKeys.showModal(),
        };
    }

    /** @param {KeyboardEvent} event */
    #press(event) {
        if (event.ctrlKey || event.altKey || event.metaKey || kKeys.open || !this.recording) {
            return;
        }
        if (event.target === kSearch) {
            this.#pressInSearch(event);
        } else if (event.key === '/') {
            event.preventDefault();
            kSearch.focus();
            kSearch.select();
        } else if (!(event.target instanceof HTMLSelectElement) && Object.hasOwn(kButtonOfKey, event.key)) {
            event.preventDefault();
            element(kButtonOfKey[event.key]).click();
        }
    }

    /** @param {KeyboardEvent} event */
    #pressInSearch(event) {
        if (event.key === 'Escape') {
            event.preventDefault();  // which would empty it
            kSearch.blur();
        } else if (event.key === 'Enter') {
            event.preventDefault();
            this.#jumpToFound(event.shiftKey ? -1 : 1);
        }
    }

    // Goes where the link leads. What is wrong in it is ignored.
    follow() {
        const link = new URLSearchParams(location.hash.slice(1));
        /** @type {(name: string) => number | null} */
        const number = (name) => /^\d+$/.test(link.get(name) ?? '') ? Number(link.get(name)) : null;
        const recording = number('recording') ?? 0;
        this.load(recording < this.data.recordings.length ? recording : 0, number('event'), number('machine'));
    }

    /**
     * Goes to an event and a machine of a recording, or to where the recording is to be opened.
     * @param {number} index
     * @param {number | null} event
     * @param {number | null} machine
     */
    async load(index, event, machine) {
        const request = ++this.requests;
        const summary = this.data.recordings[index];
        if (index !== this.index && summary) {
            this.index = index;
            this.loading = this.#loadRecording(index);
        }
        await this.loading;
        // The latest link counts, also where one comes while a recording is unpacked.
        if (request !== this.requests) {
            return;
        }
        if (this.recording) {
            const opened = event ?? summary.event;
            const wanted = this.recording.machines.findIndex((each) => each.number === (machine ?? summary.machine));
            const isSame = this.recording.machines[this.machine]?.number === machine;
            this.go(opened === null ? 0 : this.recording.positionOf(opened), isSame ? this.machine : Math.max(wanted, 0));
        }
        this.#tellReady();
    }

    /** @param {number} index */
    async #loadRecording(index) {
        /** @type {HTMLSelectElement} */ (element('recording')).value = String(index);
        const recording = await this.#decode(index);
        if (recording === null || index !== this.index) {
            return;
        }
        if (recording.count === 0 || recording.machines.length === 0) {
            this.#refuse(kEmpty);
        } else {
            this.#open(recording);
        }
    }

    // Programs that drive the page wait for this: what it shows is drawn.
    #tellReady() {
        requestAnimationFrame(() => requestAnimationFrame(() => {
            document.documentElement.dataset.ready = 'true';
            performance.mark('ready');
        }));
    }

    /** @param {number} index */
    async #decode(index) {
        document.documentElement.dataset.ready = 'false';
        element('problem').hidden = true;
        this.recording = null;
        if (typeof DecompressionStream === 'undefined') {
            return this.#refuse(kTooOld);
        }
        try {
            return await Recording.decode(document.querySelectorAll('.recording')[index]?.textContent ?? '');
        } catch (error) {
            console.error(error);
            return index === this.index ? this.#refuse(kDamaged) : null;
        }
    }

    /** @param {string} problem */
    #refuse(problem) {
        element('replay').hidden = true;
        element('problem').textContent = problem;
        element('problem').hidden = false;
        return null;
    }

    /** @param {Recording} recording */
    #open(recording) {
        const { facts, compared } = this.data.recordings[this.index];
        element('facts').textContent = facts.join('\n');
        element('facts').hidden = facts.length === 0;
        element('replay').classList.toggle('compared', compared);
        element('replay').hidden = false;
        this.recording = recording;
        this.machine = -1;
        this.picture.load(recording.data.picture, recording.data.noPicture);
        this.timeline.load(recording);
        this.search();
    }

    /**
     * Shows an event and a machine, or the nearest ones that there are.
     * @param {number} position
     * @param {number} machine
     */
    go(position, machine) {
        if (!this.recording) {
            return;
        }
        this.position = Math.min(Math.max(position, 0), this.recording.count - 1);
        const index = Math.min(Math.max(machine, 0), this.recording.machines.length - 1);
        if (index !== this.machine) {
            this.machine = index;
            this.#fillChooser();
        }
        this.#show(this.recording);
        this.#scheduleLink();
    }

    // The machines that are shown: a comparison has the old and the new one side by side.
    get #shown() {
        const { compared } = this.data.recordings[this.index];
        return compared ? [...(this.recording?.machines ?? []).keys()] : [this.machine];
    }

    /** @param {Recording} recording */
    #show(recording) {
        const { position } = this;
        const time = recording.timeAt(position);
        const timeout = recording.timeoutAt(position);
        element('event').textContent = String(recording.eventNumbers[position]);
        element('time').textContent = time === null ? '' : `at ${time} ms`;
        element('type').textContent = recording.typeAt(position) + (timeout === null ? '' : ` ${timeout}`);
        element('machine').textContent = recording.machines[this.machine].label;
        this.#showTurns(recording);
        this.#showAttributes(recording);
        this.picture.show(this.#shown.map((index) => recording.machines[index]));
        this.picture.light(recording.machines[this.machine], position);
        this.timeline.show(position, this.machine);
        this.#showFound();
        this.#say(this.#summary(recording));
    }

    /** @param {Recording} recording */
    #showTurns(recording) {
        const turns = this.#shown.map((index) => makeTurn(recording, index, this.position, (machine, choice) => {
            this.choose(machine, choice);
            element('choice').scrollIntoView({ block: 'nearest' });
        }));
        const own = recording.linesAt(this.position).filter((line) => line.machine === kNone).map(makeLine);
        const buttons = () => /** @type {HTMLElement[]} */ ([...element('turns').querySelectorAll('button')]);
        const focused = buttons().findIndex((each) => each === document.activeElement);
        element('turns').replaceChildren(...turns, ...own);
        if (focused >= 0) {
            (buttons()[focused] ?? element('side')).focus({ preventScroll: true });
        }
    }

    /** @param {Recording} recording */
    #showAttributes(recording) {
        const compared = new Set(this.#shown.flatMap((index) =>
            recording.machines[index].comparisonsAt(this.position).flat(2).flatMap(({ filter }) =>
                [`${filter.left.attribute} ${filter.kind}`, `${filter.right.attribute} ${filter.kind}`])));
        element('attributes').replaceChildren(...recording.attributesAt(this.position).map((column) => {
            const isCompared = compared.has(`${column.name} ${column.kind}`);
            return make('tr', isCompared ? 'compared' : '',
                make('th', 'key', makeText('', recording.data.names[column.name])),
                make('td', `value ${column.kind}`, makeText('', recording.shownAt(column, this.position))),
                make('td', 'mark', isCompared ? 'compared' : ''));
        }));
    }

    /** @param {Recording} recording */
    #summary(recording) {
        const machine = recording.machines[this.machine];
        const before = machine.stateBefore(this.position);
        const after = machine.stateAfter(this.position);
        const name = this.#shown.length > 1 ? machine.label : machine.number;
        const lines = recording.linesAt(this.position).filter((line) => line.machine === this.machine || line.machine === kNone);
        const triggers = lines.filter(({ isTrigger }) => isTrigger).length;
        return `event ${recording.eventNumbers[this.position]}, ${recording.typeAt(this.position)}, machine ${name}: ` +
            (before === after ? machine.nameOf(after) : `${machine.nameOf(before)} -> ${machine.nameOf(after)}`) +
            counted(triggers, 'trigger') + counted(lines.length - triggers, 'log line');
    }

    /** @param {string} text */
    #say(text) {
        element('live').textContent = text;
    }

    /**
     * @param {number | undefined} position
     * @param {number} direction
     * @param {string} what
     */
    #goIfAny(position, direction, what) {
        if (position === undefined) {
            this.#say(`no ${direction > 0 ? 'later' : 'earlier'} ${what}`);
        } else {
            this.go(position, this.machine);
        }
    }

    /** @param {number} direction */
    #step(direction) {
        const position = this.position + direction;
        const isThere = position >= 0 && position < (this.recording?.count ?? 0);
        this.#goIfAny(isThere ? position : undefined, direction, 'event');
    }

    /**
     * @param {(machine: Machine) => NumberArray} positionsOf
     * @param {number} direction
     * @param {string} what
     */
    #jump(positionsOf, direction, what) {
        const machine = this.recording?.machines[this.machine];
        this.#goIfAny(machine && neighbour(positionsOf(machine), this.position, direction), direction, what);
    }

    // Lines of no machine are everybody's.
    /** @param {number} direction */
    #jumpToLog(direction) {
        const { recording, position } = this;
        if (recording) {
            const candidates = [recording.machines[this.machine].logs, recording.ownLogs]
                .flatMap((positions) => neighbour(positions, position, direction) ?? []);
            const nearest = candidates.sort((a, b) => direction * (a - b)).at(0);
            this.#goIfAny(nearest, direction, 'log line');
        }
    }

    /** @param {number} direction */
    #jumpToTried(direction) {
        const machine = this.recording?.machines[this.machine];
        const tries = machine?.shapesThatTry(this.choice) ?? [];
        const turns = machine?.turns ?? [];
        let position = this.position + direction;
        while (position >= 0 && position < turns.length && !tries[turns[position]]) {
            position += direction;
        }
        this.#goIfAny(position >= 0 && position < turns.length ? position : undefined, direction, 'time that it was tried');
    }

    // Of a transition, that of the last filter which has one: there it came furthest.
    #jumpToNearest() {
        const filters = this.recording?.machines[this.machine].transitions[this.choice.transition]?.filters ?? [];
        const asked = this.choice.filter === null ? filters.filter((each) => each.nearest !== null) : [filters[this.choice.filter]];
        const nearest = asked.at(-1)?.nearest ?? null;
        if (nearest === null) {
            this.#say('no nearest miss');
        } else {
            this.go(this.recording?.positionOf(nearest) ?? 0, this.machine);
        }
    }

    search() {
        const { positions, unknown } = this.recording ? searched(this.recording, kSearch.value) : { positions: [], unknown: null };
        this.found = positions;
        this.unknown = unknown;
        this.#showFound();
    }

    #showFound() {
        const at = lowerBound(this.found, this.position);
        const isAt = this.found[at] === this.position;
        element('found').textContent = kSearch.value.trim() === '' ? ''
            : this.unknown !== null ? `no attribute ${this.unknown}`
            : isAt ? `${at + 1} of ${this.found.length}` : `${this.found.length || 'none'} found`;
    }

    // Begins anew behind the last one.
    /** @param {number} direction */
    #jumpToFound(direction) {
        const position = neighbour(this.found, this.position, direction) ?? this.found.at(direction > 0 ? 0 : -1);
        if (position === undefined) {
            this.#say('no event is found');
        } else {
            this.go(position, this.machine);
        }
    }

    #fillChooser() {
        const { states, transitions } = /** @type {Recording} */ (this.recording).machines[this.machine];
        kChooser.replaceChildren(...transitions.flatMap(({ name, from, to, filters, fired, tried }, index) => [
            makeOption(String(index), `${name} ${states[from]} -> ${states[to]} (fired ${fired} of ${tried})`),
            ...filters.map(({ condition, stopped }, filter) =>
                makeOption(`${index}.${filter}`, `\u2003${condition} (stopped ${stopped})`)),
        ]));
        this.choose(this.machine, { transition: 0, filter: null });
    }

    /**
     * @param {number} machine
     * @param {Choice} choice
     */
    choose(machine, choice) {
        if (machine !== this.machine) {
            this.go(this.position, machine);
        }
        this.choice = choice;
        kChooser.value = choice.filter === null ? String(choice.transition) : `${choice.transition}.${choice.filter}`;
        const transition = this.recording?.machines[this.machine].transitions[choice.transition];
        element('why').replaceChildren(...(transition?.why ?? []).flatMap((line) => [...this.#linked(line), '\n']));
    }

    /**
     * Makes links of the events that a line names.
     * @param {string} line
     */
    #linked(line) {
        return line.split(/(?<=\bin event )(\d+)/).map((part, index) => {
            if (index % 2 === 0) {
                return part;
            }
            const link = make('a', '', part);
            link.setAttribute('href', this.#linkTo(Number(part)));
            return link;
        });
    }

    /** @param {number} event */
    #linkTo(event) {
        const { number } = /** @type {Recording} */ (this.recording).machines[this.machine];
        const recording = this.data.recordings.length > 1 ? `&recording=${this.index}` : '';
        return `#event=${event}&machine=${number}${recording}`;
    }

    #scheduleLink() {
        clearTimeout(this.linkTimer);
        const wait = this.lastLink + kLinkInterval - performance.now();
        if (wait > 0) {
            this.linkTimer = setTimeout(() => this.#writeLink(), wait);
        } else {
            this.#writeLink();
        }
    }

    #writeLink() {
        if (this.recording) {
            this.lastLink = performance.now();
            history.replaceState(null, '', this.#linkTo(this.recording.eventNumbers[this.position]));
        }
    }

    /** @param {boolean} isPrinting */
    #preparePrint(isPrinting) {
        document.documentElement.classList.toggle('printing', isPrinting);
        this.timeline.drawAll(isPrinting);
    }
}

/**
 * @param {string} value
 * @param {string} text
 */
function makeOption(value, text) {
    const option = document.createElement('option');
    option.value = value;
    option.textContent = text;
    return option;
}

/** @type {Record<string, string>} */
const kButtonOfKey = {
    'ArrowRight': 'next',
    'ArrowLeft': 'previous',
    'Home': 'first',
    'End': 'last',
    'ArrowDown': 'next-machine',
    'ArrowUp': 'previous-machine',
    'm': 'next-move',
    'M': 'previous-move',
    't': 'next-trigger',
    'T': 'previous-trigger',
    'l': 'next-log',
    'L': 'previous-log',
    'f': 'next-tried',
    'F': 'previous-tried',
    'n': 'nearest',
    '+': 'zoom-in',
    '-': 'zoom-out',
    '0': 'zoom-all',
    '?': 'help',
};

addEventListener('DOMContentLoaded', () => new Page(JSON.parse(element('page').textContent ?? '')).start());
