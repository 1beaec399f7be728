'use strict';

// It shows the machine as Graphviz has drawn it, with the state lit in which the machine is.

const kSvg = 'http://www.w3.org/2000/svg';

// The smallest letters, of 11 units, are not to become less than readable, and not huge on a large screen.
const kLeastFit = 0.9;
const kGreatestFit = 1.7;
const kZoomStep = 1.25;
const kMargin = 10;
const kBorder = 4;  // around the state that is lit

const kTextSize = 14;

// Returns how much larger than usual the texts of the page are, as on a large screen.
function textScale() {
    return parseFloat(getComputedStyle(document.documentElement).fontSize) / kTextSize;
}

/**
 * Scrolls the box, and nothing around it, until it shows the element.
 * @param {Element} box
 * @param {Element} element
 * @param {number} covered so much of it at the top, in pixels
 */
function scrollWithin(box, element, covered = 0) {
    const { left, right, top, bottom } = box.getBoundingClientRect();
    const outer = { left, right, top: top + covered, bottom };
    const inner = element.getBoundingClientRect();
    /** @type {(low: number, high: number, from: number, to: number) => number} */
    const overhang = (low, high, from, to) => low < from ? low - from : Math.max(Math.min(high - to, low - from), 0);
    box.scrollTop += overhang(inner.top, inner.bottom, outer.top, outer.bottom);
    box.scrollLeft += overhang(inner.left, inner.right, outer.left, outer.right);
}

/**
 * The arrows of a machine, and what is drawn of it: Graphviz names them "c0s1" and "c0s1:t2:e->c0s2:name". An older
 * Graphviz leaves out the "t2", but what an arrow says when it is pointed at begins with that number, too.
 * @typedef {{from: number, to: number, first: number, element: Element}} Arrow
 * @typedef {{elements: SVGGElement[], states: SVGGElement[], arrows: Arrow[]}} Drawing
 */

class Picture {
    /** @param {HTMLElement} box */
    constructor(box) {
        this.box = box;
        /** @type {SVGSVGElement | null} */
        this.svg = null;
        /** @type {SVGGElement | null} */
        this.graph = null;  // has the machines that are shown, and no others, or each step would lay them all out
        /** @type {Map<number, Drawing>} */
        this.drawings = new Map();  // by the number of the machine
        /** @type {Machine[]} */
        this.shown = [];
        /** @type {Element[]} */
        this.marked = [];
        this.size = { width: 1, height: 1 };
        this.scale = () => this.#fitScale();
        new ResizeObserver(() => this.#resize()).observe(box);
    }

    /**
     * @param {string} text of the picture
     * @param {string} reason why there is none
     */
    load(text, reason) {
        this.drawings.clear();
        this.shown = [];
        this.marked = [];
        this.svg = null;
        this.graph = null;
        if (text === '') {
            this.box.replaceChildren(make('p', 'reason', reason));
            return;
        }
        const parsed = new DOMParser().parseFromString(text, 'image/svg+xml').documentElement;
        this.svg = /** @type {SVGSVGElement} */ (/** @type {unknown} */ (document.importNode(parsed, true)));
        this.svg.setAttribute('role', 'img');
        // It is of all machines, and letters would be measured at its scale.
        this.svg.removeAttribute('viewBox');
        for (const element of this.svg.querySelectorAll('g.cluster, g.node, g.edge')) {
            this.#index(/** @type {SVGGElement} */ (element));
        }
        this.graph = /** @type {SVGGElement | null} */ (this.svg.querySelector('g.graph'));
        // What they are is said of the picture as a whole, and at its side.
        this.graph?.setAttribute('aria-hidden', 'true');
        this.graph?.replaceChildren();
        this.box.replaceChildren(this.svg);
    }

    /** @param {SVGGElement} element */
    #index(element) {
        const title = element.querySelector('title')?.textContent ?? '';
        const name = /^(?:cluster_)?c(\d+)(?:s(\d+))?(?::[tn](\d+))?.*?(?:->c\d+s(\d+).*)?$/.exec(title);
        if (!name) {
            return;
        }
        const [machine, from, port, to] = name.slice(1).map(Number);
        const drawing = this.drawings.get(machine) ?? { elements: [], states: [], arrows: [] };
        this.drawings.set(machine, drawing);
        drawing.elements.push(element);
        if (element.classList.contains('node') && from >= 0) {
            drawing.states[from] = element;
        } else if (element.classList.contains('edge') && from >= 0) {
            const said = element.querySelector('a')?.getAttributeNS('http://www.w3.org/1999/xlink', 'title') ?? '';
            const first = Number.isNaN(port) ? parseInt(said, 10) : port;
            drawing.arrows.push({ from, to, first, element });
        }
    }

    /**
     * Shows these machines alone.
     * @param {Machine[]} machines
     */
    show(machines) {
        const isShown = machines.length === this.shown.length && machines.every((each) => this.shown.includes(each));
        if (!this.svg || !this.graph || isShown) {
            return;
        }
        this.shown = machines;
        const drawings = machines.flatMap(({ number }) => this.drawings.get(number) ?? []);
        this.graph.replaceChildren(...drawings.flatMap(({ elements }) => elements));
        const { x, y, width, height } = this.graph.getBBox();
        const shift = this.graph.transform.baseVal.consolidate()?.matrix ?? new DOMMatrix();
        this.size = { width: width + 2 * kMargin, height: height + 2 * kMargin };
        this.svg.setAttribute('viewBox',
            `${x + shift.e - kMargin} ${y + shift.f - kMargin} ${this.size.width} ${this.size.height}`);
        // On paper it has this size.
        this.svg.setAttribute('width', String(this.size.width));
        this.svg.setAttribute('height', String(this.size.height));
        this.#resize();
    }

    #wholeScale() {
        return Math.min(this.box.clientWidth / this.size.width, this.box.clientHeight / this.size.height);
    }

    // So that it fits as far as it can be read.
    #fitScale() {
        return Math.min(Math.max(this.#wholeScale(), kLeastFit * textScale()), kGreatestFit * textScale());
    }

    #resize() {
        if (this.svg) {
            const scale = this.scale();
            this.svg.style.width = `${Math.floor(this.size.width * scale)}px`;
            this.svg.style.height = `${Math.floor(this.size.height * scale)}px`;
            this.#reveal();
        }
    }

    /** @param {number} direction 1 for larger, -1 for smaller, 0 for all of it */
    zoom(direction) {
        const scale = this.scale() * kZoomStep ** direction;
        this.scale = direction === 0 ? () => this.#wholeScale() : () => scale;
        this.#resize();
    }

    /**
     * Marks what the machines that are shown did with an event.
     * @param {Machine} selected
     * @param {number} position
     */
    light(selected, position) {
        if (!this.svg) {
            return;
        }
        this.marked.forEach((element) => element.classList.remove('lit', 'fired'));
        this.graph?.querySelectorAll('.ground').forEach((element) => element.remove());
        this.marked = [];
        // The selected one comes last, so that it is the one that is scrolled to.
        for (const machine of [...this.shown].sort((a, b) => Number(a === selected) - Number(b === selected))) {
            const drawing = this.drawings.get(machine.number);
            machine.firedAt(position).forEach((each) => this.#mark(this.#arrowOf(machine, drawing, each), 'fired'));
            const state = drawing?.states[machine.stateAfter(position)];
            state?.prepend(this.#groundOf(state));
            this.#mark(state, 'lit');
        }
        const state = selected.nameOf(selected.stateAfter(position));
        this.svg.setAttribute('aria-label', `machine ${selected.label} in state ${state}`);
        this.#reveal();
    }

    /**
     * @param {Element | undefined} element
     * @param {string} mark
     */
    #mark(element, mark) {
        if (element) {
            element.classList.add(mark);
            this.marked.push(element);
        }
    }

    /** @param {SVGGElement} state */
    #groundOf(state) {
        const { x, y, width, height } = state.getBBox();
        const ground = document.createElementNS(kSvg, 'rect');
        ground.setAttribute('class', 'ground');
        ground.setAttribute('rx', '12');
        ground.setAttribute('x', String(x - kBorder));
        ground.setAttribute('y', String(y - kBorder));
        ground.setAttribute('width', String(width + 2 * kBorder));
        ground.setAttribute('height', String(height + 2 * kBorder));
        return ground;
    }

    /**
     * Returns the arrow that stands for a transition: one may stand for several, of which the first one counts.
     * @param {Machine} machine
     * @param {Drawing | undefined} drawing
     * @param {number} index of the transition
     */
    #arrowOf(machine, drawing, index) {
        const { from, to } = machine.transitions[index];
        const place = machine.transitions.slice(0, index + 1).filter((each) => each.from === from).length;
        const candidates = drawing?.arrows.filter((each) => each.from === from && each.to === to && each.first <= place);
        return candidates?.sort((a, b) => a.first - b.first).at(-1)?.element;
    }

    #reveal() {
        const ground = this.marked.at(-1)?.querySelector('.ground');
        if (ground) {
            scrollWithin(this.box, ground);
        }
    }
}
