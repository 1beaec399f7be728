'use strict';

// It reads a recording out of the page. Nothing is copied out of the columns but the numbers that were plotted; what is
// asked for again and again, such as where a machine moves, is found once and kept in an index.

const kColumnArrays = {
    u8: Uint8Array,
    u16: Uint16Array,
    u32: Uint32Array,
    i64: BigInt64Array,
    u64: BigUint64Array,
    f64: Float64Array,
};

// It stands for no text, and for no machine.
const kNone = 0xffffffff;

// It stands for a state that is not known.
const kUnknown = -1;

/**
 * Returns the index of the first element that is not less than the value.
 * @param {NumberArray} sorted
 * @param {number} value
 */
function lowerBound(sorted, value) {
    let low = 0;
    let high = sorted.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (sorted[middle] < value) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

/**
 * Returns a double as the tool's reports show it: with the shortest digits that read back.
 * @param {number} value
 */
function shownDouble(value) {
    if (Number.isNaN(value)) {
        return 'nan';
    }
    if (!Number.isFinite(value)) {
        return value > 0 ? 'inf' : '-inf';
    }
    const [digits, power] = value.toExponential().split('e');
    const exponent = Number(power);
    if (exponent >= -4 && exponent < 16) {
        return Object.is(value, -0) ? '-0' : String(value);
    }
    return `${digits}e${exponent < 0 ? '-' : '+'}${String(Math.abs(exponent)).padStart(2, '0')}`;
}

/**
 * @param {number[]} shape
 * @returns {Step[]}
 */
function stepsOf(shape) {
    const steps = [];
    let at = 0;
    while (at < shape.length) {
        const [state, raised, type, count] = shape.slice(at, at + 4);
        at += 4;
        const attempts = [];
        for (let i = 0; i < count; ++i, at += 3) {
            attempts.push({ transition: shape[at], made: shape[at + 1], fired: shape[at + 2] === 1 });
        }
        steps.push({ state, raised: raised === 1, type, attempts });
    }
    return steps;
}

// It is what one machine did in a recording.
class Machine {
    /**
     * @param {MachineData} data
     * @param {Recording} recording
     */
    constructor(data, recording) {
        this.recording = recording;
        this.label = data.label;
        this.number = data.number;
        this.states = data.states;
        this.firstState = recording.data.wholeStart ? 0 : kUnknown;
        this.transitions = data.transitions;
        this.turns = recording.numbers(data.turns);
        this.shapes = data.shapes.map(stepsOf);
        this.drawnAt = recording.numbers(data.drawn.at);
        this.drawnNumbers = recording.numbers(data.drawn.number);
        this.drawnTexts = recording.numbers(data.drawn.text);
        // Of each shape: the state that the turn leads to, if there is one.
        this.targets = Int32Array.from(this.shapes, (steps) => this.#targetOf(steps));
        this.moves = this.#findMoves();
        this.changes = this.#findChanges();
        /** @type {number[]} */
        this.triggers = [];
        /** @type {number[]} */
        this.logs = [];
    }

    /** @param {Step[]} steps */
    #targetOf(steps) {
        const last = steps.at(-1);
        const attempt = last?.attempts.at(-1);
        return attempt?.fired ? this.transitions[attempt.transition].to : last?.state ?? -1;
    }

    #findMoves() {
        const isMove = Uint8Array.from(this.shapes, (steps, shape) =>
            steps.length > 0 && steps[0].state !== this.targets[shape] ? 1 : 0);
        let count = 0;
        for (let position = 0; position < this.turns.length; ++position) {
            count += isMove[this.turns[position]];
        }
        const moves = new Uint32Array(count);
        for (let position = 0, next = 0; next < count; ++position) {
            if (isMove[this.turns[position]]) {
                moves[next++] = position;
            }
        }
        return moves;
    }

    // Finds the positions at which its state is another one than at the one before. Not each of them is a move: it may
    // have moved at an event that was not chosen.
    #findChanges() {
        const changes = [];
        let state = this.firstState;
        for (let position = 0; position < this.turns.length; ++position) {
            const target = this.targets[this.turns[position]];
            if (target >= 0 && target !== state) {
                changes.push(position);
                state = target;
            }
        }
        return changes;
    }

    /** @param {number} position */
    stepsAt(position) {
        return this.shapes[this.turns[position]];
    }

    /**
     * Returns the state in which the machine is behind the event, or kUnknown if no event that was chosen tells.
     * @param {number} position
     */
    stateAfter(position) {
        for (let at = position; at >= 0; --at) {
            const target = this.targets[this.turns[at]];
            if (target >= 0) {
                return target;
            }
        }
        return this.firstState;
    }

    /** @param {number} state */
    nameOf(state) {
        return this.states[state] ?? 'unknown, as its events were not chosen';
    }

    /** @param {number} position */
    stateBefore(position) {
        return this.stepsAt(position)[0]?.state ?? this.stateAfter(position - 1);
    }

    /** @param {number} position */
    firedAt(position) {
        const attempts = this.stepsAt(position).flatMap((step) => step.attempts);
        return attempts.filter((each) => each.fired).map((each) => each.transition);
    }

    /**
     * Returns what the machine compared in a turn: for each step, for each attempt.
     * @param {number} position
     * @returns {Comparison[][][]}
     */
    comparisonsAt(position) {
        let drawn = lowerBound(this.drawnAt, position);
        /** @type {(operand: Operand, filter: Filter, raised: boolean) => string} */
        const read = (operand, filter, raised) => {
            if (operand.constant !== undefined) {
                return operand.constant;
            }
            if (operand.attribute === undefined) {
                return this.#shownDrawn(drawn++);
            }
            const found = raised ? null : this.recording.comparableAt(position, operand.attribute, filter.kind);
            return found ?? operand.absent ?? '';
        };
        return this.stepsAt(position).map((step) => step.attempts.map((attempt) => {
            const filters = this.transitions[attempt.transition].filters.slice(0, attempt.made);
            return filters.map((filter, index) => ({
                filter,
                holds: attempt.fired || index + 1 < attempt.made,
                left: read(filter.left, filter, step.raised),
                right: read(filter.right, filter, step.raised),
            }));
        }));
    }

    /** @param {number} index */
    #shownDrawn(index) {
        const text = this.drawnTexts[index];
        return text === kNone ? shownDouble(this.drawnNumbers[index]) : this.recording.data.shownTexts[text];
    }

    /**
     * Returns of each shape whether the transition, or the filter, was tried in it.
     * @param {Choice} choice
     */
    shapesThatTry(choice) {
        const least = choice.filter === null ? 0 : choice.filter + 1;
        return this.shapes.map((steps) => steps.some((step) =>
            step.attempts.some((each) => each.transition === choice.transition && each.made >= least)));
    }
}

class Recording {
    /** @param {ArrayBuffer} buffer */
    constructor(buffer) {
        const length = new DataView(buffer).getUint32(0, true);
        this.buffer = buffer;
        this.base = Math.ceil((8 + length) / 8) * 8;
        /** @type {RecordingData} */
        this.data = JSON.parse(new TextDecoder().decode(new Uint8Array(buffer, 8, length)));
        const { events, tables, machines, lines } = this.data;
        this.count = events.count;
        this.eventNumbers = this.numbers(events.number);
        this.types = this.numbers(events.type);
        this.times = this.#optional(events.time);
        this.timeouts = this.#optional(events.timeout);
        this.tables = tables.map((table) => table.map((column) => ({
            name: column.name,
            kind: column.kind,
            values: this.column(column.values),
            present: column.present && this.numbers(column.present),
        })));
        this.rows = this.#findRows();
        /** @type {Map<number, Uint32Array>} */
        this.positionsOfTypes = new Map();
        /** @type {Map<AttributeColumn, Float64Array>} */
        this.doublesOfColumns = new Map();
        this.machines = machines.map((machine) => new Machine(machine, this));
        this.lineAt = this.numbers(lines.at);
        this.lineMachines = this.numbers(lines.machine);
        this.lineSteps = this.numbers(lines.step);
        this.lineKinds = this.numbers(lines.kind);
        this.lineTexts = this.numbers(lines.text);
        /** @type {number[]} */
        this.ownLogs = [];  // those of no machine
        this.#findLines();
    }

    /**
     * Decodes what is in the page.
     * @param {string} base64
     */
    static async decode(base64) {
        const characters = atob(base64.trim());
        const bytes = new Uint8Array(characters.length);
        for (let i = 0; i < bytes.length; ++i) {
            bytes[i] = characters.charCodeAt(i);
        }
        const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'));
        return new Recording(await new Response(stream).arrayBuffer());
    }

    /**
     * @param {ColumnPlace} place
     * @returns {ArrayLike<number | bigint>}
     */
    column(place) {
        return new kColumnArrays[place.type](this.buffer, this.base + place.at, place.count);
    }

    /**
     * Returns a column of a type that has no 64-bit integers.
     * @param {ColumnPlace} place
     */
    numbers(place) {
        return /** @type {NumberArray} */ (this.column(place));
    }

    /** @param {OptionalColumnPlace | null} places */
    #optional(places) {
        return places && { values: this.column(places.values), present: places.present && this.numbers(places.present) };
    }

    // The k-th event of a type has row k of its table.
    #findRows() {
        const rows = new Uint32Array(this.count);
        const next = new Uint32Array(this.tables.length);
        for (let position = 0; position < this.count; ++position) {
            rows[position] = next[this.types[position]]++;
        }
        return rows;
    }

    /**
     * Returns the positions of the events of a type: of the k-th row of its table, the k-th.
     * @param {number} type
     */
    positionsOf(type) {
        const known = this.positionsOfTypes.get(type);
        const positions = known ?? Uint32Array.from(this.rows.keys()).filter((position) => this.types[position] === type);
        this.positionsOfTypes.set(type, positions);
        return positions;
    }

    /**
     * Returns the numbers of a column as they can be drawn: what is absent is no number.
     * @param {AttributeColumn} column
     */
    doublesOf(column) {
        const doubles = this.doublesOfColumns.get(column) ??
            Float64Array.from(column.values, (value, row) => this.#presentAt(column, row) ? Number(value) : NaN);
        this.doublesOfColumns.set(column, doubles);
        return doubles;
    }

    #findLines() {
        for (let i = 0; i < this.lineAt.length; ++i) {
            const machine = this.machines[this.lineMachines[i]];
            const triggers = machine?.triggers ?? [];
            const logs = machine?.logs ?? this.ownLogs;
            const marks = this.lineKinds[i] === 0 ? triggers : logs;
            if (marks.at(-1) !== this.lineAt[i]) {
                marks.push(this.lineAt[i]);
            }
        }
    }

    /**
     * Returns the position of the event with the number, or of the one nearest to it.
     * @param {number} number
     */
    positionOf(number) {
        const after = Math.min(lowerBound(this.eventNumbers, number), this.count - 1);
        const isFirst = after === 0 || this.eventNumbers[after] - number < number - this.eventNumbers[after - 1];
        return isFirst ? after : after - 1;
    }

    /** @param {number} position */
    typeAt(position) {
        return this.data.types[this.types[position]];
    }

    /** @param {number} position */
    timeAt(position) {
        return this.times && this.#presentAt(this.times, position) ? this.times.values[position] : null;
    }

    /** @param {number} position */
    timeoutAt(position) {
        return this.timeouts && this.#presentAt(this.timeouts, position) ? this.timeouts.values[position] : null;
    }

    /**
     * @param {{present: NumberArray | null}} column
     * @param {number} row
     */
    #presentAt(column, row) {
        return column.present === null || column.present[row] !== 0;
    }

    /**
     * Returns the columns of the attributes that the event has.
     * @param {number} position
     */
    attributesAt(position) {
        const row = this.rows[position];
        return this.tables[this.types[position]].filter((column) => this.#presentAt(column, row));
    }

    /**
     * Returns the value of an attribute as reports show it.
     * @param {AttributeColumn} column
     * @param {number} position
     */
    shownAt(column, position) {
        const value = Number(column.values[this.rows[position]]);
        switch (column.kind) {
            case 'string':
                return this.data.shownTexts[value];
            case 'bool':
                return value !== 0 ? 'true' : 'false';
            case 'double':
                return shownDouble(value);
            default:
                return String(column.values[this.rows[position]]);
        }
    }

    /**
     * Returns what a filter finds in the event: nothing in an empty text either.
     * @param {number} position
     * @param {number} name
     * @param {AttributeKind} kind
     */
    comparableAt(position, name, kind) {
        const column = this.attributesAt(position).find((each) => each.name === name && each.kind === kind);
        const isEmpty = kind === 'string' && column && this.data.texts[Number(column.values[this.rows[position]])] === '';
        return column && !isEmpty ? this.shownAt(column, position) : null;
    }

    /**
     * Returns the trigger and log lines that an event made.
     * @param {number} position
     * @returns {Line[]}
     */
    linesAt(position) {
        const lines = [];
        for (let i = lowerBound(this.lineAt, position); this.lineAt[i] === position; ++i) {
            lines.push({
                machine: this.lineMachines[i],
                step: this.lineSteps[i],
                isTrigger: this.lineKinds[i] === 0,
                texts: this.data.lineTexts[this.lineTexts[i]].split('\n'),
            });
        }
        return lines;
    }
}
