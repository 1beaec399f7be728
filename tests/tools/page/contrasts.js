// Run in a page, it returns the contrast of each text that is seen, and of the picture's lines, to what is behind it.
const pen = new OffscreenCanvas(1, 1).getContext('2d', { willReadFrequently: true });
const rgba = (colour) => {
    pen.clearRect(0, 0, 1, 1);
    pen.fillStyle = colour;
    pen.fillRect(0, 0, 1, 1);
    return [...pen.getImageData(0, 0, 1, 1).data];
};
const over = (above, below) => above.map((each, index) =>
    index === 3 ? 255 : (each * above[3] + below[index] * (255 - above[3])) / 255);
const groundOf = (element) => {
    if (!element) {
        return rgba('Canvas');
    }
    const shapes = element instanceof SVGGElement ? [...element.querySelectorAll(':scope > .ground')] : [];
    const colour = rgba(shapes.length > 0 ? getComputedStyle(shapes[0]).fill : getComputedStyle(element).backgroundColor);
    return colour[3] === 255 ? colour : over(colour, groundOf(element.parentElement));
};
// Graphviz draws what is behind a text before it.
const behind = (element) => {
    const box = element.getBoundingClientRect();
    const middle = [box.x + box.width / 2, box.y + box.height / 2];
    let found = null;
    for (const each of element.closest('g.node, g.cluster, g.edge')?.querySelectorAll('polygon, path, rect') ?? []) {
        const place = each.getBoundingClientRect();
        const style = getComputedStyle(each);
        const isBehind = each !== element && each.compareDocumentPosition(element) & Node.DOCUMENT_POSITION_FOLLOWING;
        const holds = place.left <= middle[0] && middle[0] <= place.right && place.top <= middle[1] &&
            middle[1] <= place.bottom;
        found = isBehind && holds && style.fill !== 'none' ? rgba(style.fill) : found;
    }
    return found ?? groundOf(document.getElementById('picture'));
};
const light = (colour) => {
    const [red, green, blue] = colour.slice(0, 3).map((each) => each / 255).map((each) =>
        each <= 0.04045 ? each / 12.92 : ((each + 0.055) / 1.055) ** 2.4);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
};
const contrast = (colour, ground) => {
    const [darker, lighter] = [light(over(colour, ground)), light(ground)].sort((a, b) => a - b);
    return (lighter + 0.05) / (darker + 0.05);
};
const found = [];
const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (texts.nextNode()) {
    const element = texts.currentNode.parentElement;
    const isSeen = texts.currentNode.data.trim() !== '' && element.getClientRects().length > 0 &&
        !element.closest('script, style, option, #live');
    if (isSeen && element.checkVisibility()) {
        const isDrawn = element instanceof SVGElement;
        const colour = rgba(isDrawn ? getComputedStyle(element).fill : getComputedStyle(element).color);
        const ground = isDrawn ? behind(element) : groundOf(element);
        found.push([texts.currentNode.data.trim().slice(0, 60), contrast(colour, ground)]);
    }
}
for (const line of document.querySelectorAll('#picture :is(.node, .edge, .cluster) :is(path, polygon, ellipse)')) {
    const { stroke } = getComputedStyle(line);
    if (stroke !== 'none' && rgba(stroke)[3] > 0) {
        found.push([`a line of ${line.closest('.node, .edge, .cluster').querySelector('title').textContent}`,
            contrast(rgba(stroke), groundOf(document.getElementById('picture')))]);
    }
}
return found;
