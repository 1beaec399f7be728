'use strict';

// It shows the recording as a whole: a lane for each machine, and what the selected machine compared. Only what is in
// sight has a canvas, and a lane is looked up in an index, pixel by pixel: it does not take longer for more events.

// Paul Tol's light colours: people who are colour-blind can tell them apart, and black letters are readable on them.
const kStateColours =
    ['#dddddd', '#77aadd', '#ee8866', '#eedd88', '#99ddff', '#44bb99', '#ffaabb', '#bbcc33', '#aaaa00'];
const kOnStateColour = '#111111';

// A lane has its triggers above its band, and its log lines below.
const kLaneHeight = 38;
const kBandTop = 12;
const kBandBottom = 28;
const kMarkWidth = 11;

const kAxisHeight = 18;
const kTickDistance = 110;
const kPlotHeight = 72;
const kPlotMargin = 8;
const kLabelHeight = 13;
const kLabelGap = 6;
const kDot = 3;
const kComparedDot = 5;

const kFewestEvents = 8;
const kFont = '11px system-ui, sans-serif';

/** @param {number} milliseconds */
function clock(milliseconds) {
    const seconds = Math.floor(Math.abs(milliseconds) / 1000);
    const parts = [Math.floor(seconds / 60) % 60, seconds % 60].map((part) => String(part).padStart(2, '0'));
    return `${milliseconds < 0 ? '-' : ''}${Math.floor(seconds / 3600)}:${parts.join(':')}`;
}

/**
 * Returns what the machine's filters compare with constants: of each such attribute, the values that came by.
 * @param {Recording} recording
 * @param {Machine} machine
 */
function plotsOf(recording, machine) {
    /** @type {Map<string, {name: number, kind: AttributeKind, types: Set<number>, constants: Set<string>}>} */
    const plots = new Map();
    for (const { filters, type } of machine.transitions) {
        for (const { kind, left, right } of filters) {
            const [name, constant] = [left.attribute ?? right.attribute, left.constant ?? right.constant];
            if (kind !== 'string' && name !== undefined && constant !== undefined) {
                const plot = plots.get(`${name} ${kind}`) ?? { name, kind, types: new Set(), constants: new Set() };
                plots.set(`${name} ${kind}`, plot);
                plot.types.add(recording.data.types.indexOf(type));
                plot.constants.add(constant);
            }
        }
    }
    return [...plots.values()].map((plot) => plotOf(recording, machine, plot));
}

/**
 * @param {Recording} recording
 * @param {Machine} machine
 * @param {{name: number, kind: AttributeKind, types: Set<number>, constants: Set<string>}} wanted
 * @returns {Plot}
 */
function plotOf(recording, machine, { name, kind, types, constants }) {
    const series = [...types].flatMap((type) => {
        const column = recording.tables[type]?.find((each) => each.name === name && each.kind === kind);
        return column ? [{ positions: recording.positionsOf(type), values: recording.doublesOf(column) }] : [];
    });
    const compares = Uint8Array.from(machine.shapes, (steps) => steps.some((step) => !step.raised &&
        step.attempts.some((attempt) => machine.transitions[attempt.transition].filters.slice(0, attempt.made).some(
            (filter) => filter.kind === kind && (filter.left.attribute === name || filter.right.attribute === name))))
        ? 1 : 0);
    const lines = [...constants].map((text) => ({ text, value: Number(text) }))
        .filter((line) => Number.isFinite(line.value)).sort((a, b) => b.value - a.value);
    let [least, greatest] = [lines.at(-1)?.value ?? Infinity, lines.at(0)?.value ?? -Infinity];
    for (const { values } of series) {
        for (const value of values) {
            if (Number.isFinite(value)) {
                least = Math.min(least, value);
                greatest = Math.max(greatest, value);
            }
        }
    }
    return {
        name: recording.data.names[name],
        constants: lines,
        series,
        isCompared: (position) => compares[machine.turns[position]] !== 0,
        least,
        greatest,
    };
}

/**
 * Returns how far below the greatest value one lies, from 0 to 1. The difference of two doubles may be no double.
 * @param {Plot} plot
 * @param {number} value
 */
function plotted({ least, greatest }, value) {
    return greatest > least ? (greatest / 2 - value / 2) / (greatest / 2 - least / 2) : 0.5;
}

/** @typedef {{height: number, draw: (pen: CanvasRenderingContext2D) => void}} Track */

class Timeline {
    /**
     * @param {HTMLElement} root
     * @param {(position: number | null, machine: number) => void} onPick
     */
    constructor(root, onPick) {
        /** @type {(selector: string) => HTMLElement} */
        const find = (selector) => /** @type {HTMLElement} */ (root.querySelector(selector));
        this.scroller = find('#tracks');
        this.lanes = find('#lanes');
        this.plots = find('#plots');
        this.overlay = find('#overlay');
        this.cursor = find('#cursor');
        this.axis = find('#axis');
        this.onPick = onPick;
        /** @type {Recording | null} */
        this.recording = null;
        /** @type {Machine | null} */
        this.machine = null;
        this.selected = 0;
        this.position = 0;
        this.from = 0;
        this.span = 1;
        this.width = 1;
        this.pending = 0;
        /** @type {Map<Element, Track>} */
        this.tracks = new Map();
        /** @type {Set<Element>} */
        this.inSight = new Set();
        this.sight = new IntersectionObserver((entries) => this.#see(entries));
        new ResizeObserver(() => this.#redraw()).observe(this.overlay);
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.#redraw());
        this.#followPointers();
    }

    /** @param {Recording} recording */
    load(recording) {
        this.recording = recording;
        this.machine = null;
        this.sight.disconnect();
        this.inSight.clear();
        this.tracks.clear();
        this.lanes.replaceChildren(this.plots);
        this.#addTrack(this.axis, { height: kAxisHeight, draw: (pen) => this.#drawAxis(pen) });
        recording.machines.forEach((machine, index) => this.#addLane(machine, index));
        if (recording.ownLogs.length > 0) {
            this.#addOwnLane(recording);
        }
        this.span = recording.count;
        this.from = 0;
    }

    /**
     * @param {Machine} machine
     * @param {number} index
     */
    #addLane(machine, index) {
        const lane = make('div', 'lane',
            makeButton('label', machine.label, `select machine ${machine.label}`, () => this.onPick(null, index)));
        lane.dataset.machine = String(index);
        /** @type {Map<number, number>} */
        const widths = new Map();
        this.#appendTrack(lane, {
            height: kLaneHeight,
            draw: (pen) => {
                this.#drawBand(pen, machine, widths);
                this.#drawMoves(pen, machine);
                this.#drawTriggers(pen, machine.triggers);
                this.#drawLogs(pen, machine.logs);
            },
        });
        this.lanes.append(lane);
    }

    /** @param {Recording} recording */
    #addOwnLane(recording) {
        const lane = make('div', 'lane', make('span', 'label', 'no machine'));
        this.#appendTrack(lane, { height: kLaneHeight, draw: (pen) => this.#drawLogs(pen, recording.ownLogs) });
        this.lanes.append(lane);
    }

    /**
     * @param {Element} parent
     * @param {Track} track
     */
    #appendTrack(parent, track) {
        const element = make('div', 'track');
        parent.append(element);
        this.#addTrack(element, track);
    }

    /**
     * @param {HTMLElement} element
     * @param {Track} track
     */
    #addTrack(element, track) {
        element.style.height = `${track.height / kTextSize}rem`;
        this.tracks.set(element, track);
        this.sight.observe(element);
    }

    /**
     * Shows an event and a machine, as what is looked at.
     * @param {number} position
     * @param {number} machine
     */
    show(position, machine) {
        this.position = position;
        this.selected = machine;
        this.#showMachine();
        if (position + 0.5 < this.from || position + 0.5 > this.from + this.span) {
            this.#pan(position + 0.5 - this.span / 2);
        }
        this.#placeCursor();
    }

    #showMachine() {
        const machine = this.recording?.machines[this.selected];
        if (!this.recording || !machine || machine === this.machine) {
            return;
        }
        this.machine = machine;
        for (const lane of this.lanes.querySelectorAll('.lane')) {
            const isSelected = lane instanceof HTMLElement && lane.dataset.machine === String(this.selected);
            lane.classList.toggle('selected', isSelected);
            lane.querySelector('button.label')?.setAttribute('aria-current', String(isSelected));
        }
        for (const track of this.plots.querySelectorAll('.track')) {
            this.sight.unobserve(track);
            this.tracks.delete(track);
            this.inSight.delete(track);
        }
        this.plots.replaceChildren();
        for (const plot of plotsOf(this.recording, machine)) {
            const row = make('div', 'plot', make('span', 'label', makeText('', plot.name)));
            this.#appendTrack(row, { height: kPlotHeight, draw: (pen) => this.#drawPlot(pen, plot) });
            this.plots.append(row);
        }
        const lane = this.lanes.querySelector('.selected');
        lane?.after(this.plots);
        if (lane) {
            const covered = this.axis.parentElement?.offsetHeight;
            scrollWithin(this.scroller, this.plots, covered);
            scrollWithin(this.scroller, lane, covered);
        }
    }

    #placeCursor() {
        this.cursor.style.left = `${(this.position + 0.5 - this.from) / this.span * 100}%`;
    }

    /** @param {number} from */
    #pan(from) {
        const count = this.recording?.count ?? 1;
        this.from = Math.min(Math.max(from, 0), count - this.span);
        this.#redraw();
    }

    /**
     * Makes it larger by the factor, around the event at that place of the width, from 0 to 1.
     * @param {number} factor
     * @param {number} place
     */
    zoom(factor, place) {
        const count = this.recording?.count ?? 1;
        const centre = this.from + place * this.span;
        this.span = Math.min(Math.max(this.span / factor, kFewestEvents), count);
        this.#pan(centre - place * this.span);
    }

    /** @param {number} factor */
    zoomAtCursor(factor) {
        const place = (this.position + 0.5 - this.from) / this.span;
        this.zoom(factor, place >= 0 && place <= 1 ? place : 0.5);
    }

    showAll() {
        this.zoom(0, 0);
    }

    /** @param {number} clientX */
    #placeOf(clientX) {
        const box = this.overlay.getBoundingClientRect();
        return (clientX - box.left) / box.width;
    }

    // One finger or the mouse pans and picks, two fingers and the wheel zoom.
    #followPointers() {
        /** @type {Map<number, PointerEvent>} */
        const down = new Map();
        let isDragged = false;
        this.scroller.addEventListener('pointerdown', (event) => {
            if (event.button === 0 && event.target instanceof Element && event.target.closest('.track')) {
                isDragged = down.size > 0;
                down.set(event.pointerId, event);
            }
        });
        addEventListener('pointermove', (event) => {
            const last = down.get(event.pointerId);
            if (!last || (!isDragged && Math.abs(event.clientX - last.clientX) < 4)) {
                return;
            }
            isDragged = true;
            this.#drag([...down.values()], last, event);
            down.set(event.pointerId, event);
        });
        addEventListener('pointerup', (event) => {
            if (down.delete(event.pointerId) && !isDragged) {
                this.#pick(event);
            }
        });
        addEventListener('pointercancel', (event) => down.delete(event.pointerId));
        this.scroller.addEventListener('wheel', (event) => {
            if (event.target instanceof Element && event.target.closest('.track')) {
                event.preventDefault();
                this.#wheel(event);
            }
        }, { passive: false });
    }

    /**
     * @param {PointerEvent[]} pointers
     * @param {PointerEvent} last
     * @param {PointerEvent} event
     */
    #drag(pointers, last, event) {
        const other = pointers.find((each) => each.pointerId !== event.pointerId);
        if (other) {
            const before = Math.max(Math.abs(last.clientX - other.clientX), 1);
            const after = Math.max(Math.abs(event.clientX - other.clientX), 1);
            this.zoom(after / before, this.#placeOf(other.clientX));
        } else {
            this.#pan(this.from - (this.#placeOf(event.clientX) - this.#placeOf(last.clientX)) * this.span);
        }
    }

    /** @param {PointerEvent} event */
    #pick(event) {
        const lane = event.target instanceof Element ? event.target.closest('.lane') : null;
        const machine = lane instanceof HTMLElement && lane.dataset.machine ? Number(lane.dataset.machine) : this.selected;
        const position = Math.floor(this.from + this.#placeOf(event.clientX) * this.span);
        this.onPick(Math.min(Math.max(position, 0), (this.recording?.count ?? 1) - 1), machine);
    }

    /** @param {WheelEvent} event */
    #wheel(event) {
        const sideways = event.shiftKey ? event.deltaY : event.deltaX;
        if (Math.abs(sideways) > Math.abs(event.deltaY) || event.shiftKey) {
            this.#pan(this.from + sideways / this.overlay.clientWidth * this.span);
        } else {
            this.zoom(Math.exp(-event.deltaY * (event.ctrlKey ? 0.01 : 0.002)), this.#placeOf(event.clientX));
        }
    }

    /** @param {IntersectionObserverEntry[]} entries */
    #see(entries) {
        this.#measure();
        for (const { target, isIntersecting } of entries) {
            if (isIntersecting && this.tracks.has(target)) {
                this.inSight.add(target);
                this.#draw(target);
            } else {
                this.inSight.delete(target);
                target.replaceChildren();
            }
        }
    }

    #measure() {
        this.width = Math.max(this.overlay.clientWidth / textScale(), 1);
    }

    #redraw() {
        this.#placeCursor();
        cancelAnimationFrame(this.pending);
        this.pending = requestAnimationFrame(() => {
            this.#measure();
            this.inSight.forEach((element) => this.#draw(element));
        });
    }

    /**
     * Draws for paper, which shows the lanes too that the screen does not, or for the screen again.
     * @param {boolean} isPrinting
     */
    drawAll(isPrinting) {
        this.#measure();
        for (const element of this.tracks.keys()) {
            if (isPrinting || this.inSight.has(element)) {
                this.#draw(element);
            } else {
                element.replaceChildren();
            }
        }
    }

    /** @param {Element} element */
    #draw(element) {
        const track = this.tracks.get(element);
        const canvas = element.querySelector('canvas') ?? document.createElement('canvas');
        const pen = canvas.getContext('2d');
        if (!track || !pen) {
            return;
        }
        const density = devicePixelRatio * textScale();
        canvas.width = Math.round(this.width * density);
        canvas.height = Math.round(track.height * density);
        pen.scale(density, density);
        pen.font = kFont;
        pen.textBaseline = 'middle';
        track.draw(pen);
        if (!canvas.parentElement) {
            element.append(canvas);
        }
    }

    /**
     * Returns a colour of the page, as it is in the dark or in the light.
     * @param {string} name
     */
    #colour(name) {
        return getComputedStyle(this.scroller).getPropertyValue(name).trim();
    }

    /** @param {number} position */
    #x(position) {
        return (position - this.from) / this.span * this.width;
    }

    /** @param {number} x */
    #positionAt(x) {
        return this.from + x / this.width * this.span;
    }

    /**
     * Calls with the place of each mark in sight, but not with those that would hide each other.
     * @param {NumberArray} positions
     * @param {number} distance
     * @param {(x: number) => void} draw
     */
    #eachInSight(positions, distance, draw) {
        let next = lowerBound(positions, this.from - 1);
        while (next < positions.length && positions[next] < this.from + this.span) {
            const x = this.#x(positions[next] + 0.5);
            draw(x);
            next = Math.max(next + 1, lowerBound(positions, this.#positionAt(x + distance) - 0.5));
        }
    }

    /**
     * @param {CanvasRenderingContext2D} pen
     * @param {Machine} machine
     * @param {Map<number, number>} widths of the names of the states
     */
    #drawBand(pen, machine, widths) {
        const end = Math.min(this.from + this.span, machine.turns.length);
        let position = Math.floor(this.from);
        while (position < end) {
            const state = machine.stateAfter(position);
            const change = machine.changes[lowerBound(machine.changes, position + 1)] ?? machine.turns.length;
            const left = Math.max(this.#x(position), 0);
            const pixel = Math.ceil(this.#positionAt(Math.floor(left) + 1));
            const stop = Math.max(change, pixel, position + 1);
            const right = Math.min(this.#x(stop), this.width);
            position = stop;
            if (state === kUnknown) {
                continue;
            }
            pen.fillStyle = kStateColours[state % kStateColours.length];
            pen.fillRect(left, kBandTop, right - left, kBandBottom - kBandTop);
            const width = widths.get(state) ?? pen.measureText(machine.states[state]).width;
            widths.set(state, width);
            if (width + 10 < right - left) {
                pen.fillStyle = kOnStateColour;
                pen.fillText(machine.states[state], left + 5, (kBandTop + kBandBottom) / 2);
            }
        }
    }

    /**
     * @param {CanvasRenderingContext2D} pen
     * @param {Machine} machine
     */
    #drawMoves(pen, machine) {
        pen.fillStyle = this.#colour('--ink');
        // A move is where the band changes its colour: at the beginning of its event, not in its middle.
        const half = this.width / this.span / 2;
        this.#eachInSight(machine.moves, 3, (x) =>
            pen.fillRect(Math.round(x - half) - 1, kBandTop - 3, 2, kBandBottom - kBandTop + 6));
    }

    /**
     * @param {CanvasRenderingContext2D} pen
     * @param {number[]} triggers
     */
    #drawTriggers(pen, triggers) {
        pen.fillStyle = this.#colour('--trigger');
        this.#eachInSight(triggers, kMarkWidth / 2, (x) => {
            pen.beginPath();
            pen.moveTo(x, 0);
            pen.lineTo(x + kMarkWidth / 2, kBandTop - 3);
            pen.lineTo(x - kMarkWidth / 2, kBandTop - 3);
            pen.fill();
        });
    }

    /**
     * @param {CanvasRenderingContext2D} pen
     * @param {number[]} logs
     */
    #drawLogs(pen, logs) {
        pen.fillStyle = this.#colour('--ink');
        this.#eachInSight(logs, kMarkWidth / 2, (x) => {
            pen.beginPath();
            pen.arc(x, (kBandBottom + kLaneHeight) / 2, kMarkWidth / 2 - 1, 0, 2 * Math.PI);
            pen.fill();
        });
    }

    /** @param {CanvasRenderingContext2D} pen */
    #drawAxis(pen) {
        const { recording } = this;
        if (!recording) {
            return;
        }
        pen.fillStyle = this.#colour('--soft');
        const least = Math.max(kTickDistance / this.width * this.span, 1);
        const power = 10 ** Math.floor(Math.log10(least));
        const step = [1, 2, 5, 10].map((each) => each * power).find((each) => each >= least) ?? least;
        let free = 0;  // behind the last text
        for (let position = Math.ceil(this.from / step) * step; position < this.from + this.span; position += step) {
            const x = this.#x(position + 0.5);
            const time = recording.timeAt(position);
            const text = `${recording.eventNumbers[position]}${time === null ? '' : ` · ${clock(Number(time))}`}`;
            pen.fillRect(x, kAxisHeight - 4, 1, 4);
            const end = x + 3 + pen.measureText(text).width;
            if (x >= free && end < this.width) {
                pen.fillText(text, x + 3, kAxisHeight / 2);
                free = end;
            }
        }
    }

    /**
     * @param {CanvasRenderingContext2D} pen
     * @param {Plot} plot
     */
    #drawPlot(pen, plot) {
        const height = kPlotHeight - 2 * kPlotMargin;
        /** @type {(value: number) => number} */
        const y = (value) => kPlotMargin + plotted(plot, value) * height;
        const places = () => new Uint8Array((Math.ceil(this.width) + 1) * kPlotHeight);
        const [others, compared] = [places(), places()];
        for (const { positions, values } of plot.series) {
            const end = lowerBound(positions, this.from + this.span);
            for (let row = lowerBound(positions, Math.floor(this.from)); row < end; ++row) {
                if (Number.isFinite(values[row])) {
                    const place = Math.round(this.#x(positions[row] + 0.5)) * kPlotHeight + Math.round(y(values[row]));
                    (plot.isCompared(positions[row]) ? compared : others)[place] = 1;
                }
            }
        }
        pen.fillStyle = this.#colour('--plot');
        this.#drawDots(pen, others, kDot);
        pen.fillStyle = this.#colour('--compared');
        this.#drawDots(pen, compared, kComparedDot);
        this.#drawConstants(pen, plot, y);
    }

    /**
     * Draws a line for each constant, and labels beside each other where lines are too close.
     * @param {CanvasRenderingContext2D} pen
     * @param {Plot} plot
     * @param {(value: number) => number} y
     */
    #drawConstants(pen, plot, y) {
        pen.fillStyle = this.#colour('--constant');
        pen.strokeStyle = this.#colour('--ground');
        pen.lineWidth = 3;
        let [left, last] = [0, -Infinity];
        for (const { text, value } of plot.constants) {
            const top = Math.round(y(value));
            for (let x = 0; x < this.width; x += 8) {
                pen.fillRect(x, top, 5, 1);
            }
            left = top - last < kLabelHeight ? left : kLabelGap;
            pen.strokeText(text, left, Math.max(top - 6, 6));
            pen.fillText(text, left, Math.max(top - 6, 6));
            left += pen.measureText(text).width + kLabelGap;
            last = top;
        }
    }

    /**
     * Draws dots, those that touch each other in a column as one: a plot may have as many as there are events.
     * @param {CanvasRenderingContext2D} pen
     * @param {Uint8Array} places from the top to the bottom, from the left to the right
     * @param {number} size
     */
    #drawDots(pen, places, size) {
        let place = places.indexOf(1);
        while (place >= 0) {
            let [last, next] = [place, places.indexOf(1, place + 1)];
            // The margins of a plot keep the columns apart.
            while (next >= 0 && next - last <= size) {
                [last, next] = [next, places.indexOf(1, next + 1)];
            }
            const [left, top] = [Math.floor(place / kPlotHeight), place % kPlotHeight];
            pen.fillRect(left - size / 2, top - size / 2, size, last - place + size);
            place = next;
        }
    }
}
