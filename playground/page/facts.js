// What a control needs to know beyond the declaration and the texts of the tool: the range of its
// slider, its steps, its unit, what it starts with, and which four arguments are a rectangle on the
// picture. Every argument of every registered method has an entry; a test compares.
//
//   min, max, step   of the slider; functions get the size of the step's picture. Numbers typed by
//                    hand may lie beyond, so that the plug-in's own errors can be seen.
//   start            the value when the method is chosen, so that it shows something at once; left
//                    out: the argument is left out as well, and has the value that the tool gives.
//   first            it stands before the others
//   area             left, top, width or height of a rectangle: "selection" (the far ends are
//                    included) or "part"

const kYield = { min: 0, max: 1000000, step: 1000, unit: 'px', advanced: true };
const kColour = {};
const kFrame = { start: undefined };

const area = (kind) => ({
  left: { area: kind, min: (p) => -p.width, max: (p) => 2 * p.width, step: 1, unit: 'px' },
  top: { area: kind, min: (p) => -p.height, max: (p) => 2 * p.height, step: 1, unit: 'px' },
  width: { area: kind, min: 0, max: (p) => 2 * p.width, step: 1, unit: 'px' },
  height: { area: kind, min: 0, max: (p) => 2 * p.height, step: 1, unit: 'px' },
});

const kSize = {
  width: { min: 1, max: (p) => Math.max(2 * p.width, 16), step: 1, unit: 'px' },
  height: { min: 1, max: (p) => Math.max(2 * p.height, 16), step: 1, unit: 'px' },
};
const kMadeSize = {
  width: { min: 1, max: 1024, step: 1, unit: 'px', start: 480 },
  height: { min: 1, max: 1024, step: 1, unit: 'px', start: 320 },
};

const adjustHSV = {
  ...area('selection'),
  hue_degrees: { min: -359, max: 359, step: 1, unit: '°', start: 60 },
  saturation_factor: { min: 0, max: 10, step: 1, unit: '×' },
  brightness_factor: { min: 0, max: 10, step: 1, unit: '×' },
  negative: {},
  yield: kYield,
};
const adjustRGB = {
  ...area('selection'),
  red_delta: { min: -255, max: 255, step: 1, start: 40 },
  green_delta: { min: -255, max: 255, step: 1 },
  blue_delta: { min: -255, max: 255, step: 1, start: -40 },
  yield: kYield,
};
const shear = { ...kSize, shear: { min: -1, max: 1, step: 0.01, start: 0.25, first: true }, frame_color: kFrame, yield: kYield };
const measure = { ...area('selection'), yield: kYield };

/**
 * By method: the group in the gallery, the passes over all pixels (for the progress), and the
 * arguments.
 */
export const kFacts = {
  LMX_AdjustHSV: { group: 'Colour', passes: 1, arguments: adjustHSV },
  LMX_AdjustHSV_InPlace: { group: 'Colour', passes: 1, arguments: adjustHSV },
  LMX_AdjustRGB: { group: 'Colour', passes: 1, arguments: adjustRGB },
  LMX_AdjustRGB_InPlace: { group: 'Colour', passes: 1, arguments: adjustRGB },
  LMX_FlipRotate: {
    group: 'Geometry',
    passes: 1,
    arguments: {
      flip_h: {},
      flip_v: {},
      rotation: { min: 0, max: 270, step: 90, unit: '°', start: 90 },
      yield: kYield,
    },
  },
  LMX_FreeRotateByShear: {
    group: 'Geometry',
    passes: 4,
    arguments: {
      rotation: { min: 0, max: 359.5, step: 0.5, unit: '°', start: 12.5 },
      frame_color: kFrame,
      yield: kYield,
    },
  },
  LMX_ShearHorizontal: { group: 'Geometry', passes: 1, arguments: shear },
  LMX_ShearVertical: { group: 'Geometry', passes: 1, arguments: shear },
  LMX_Stretch: {
    group: 'Geometry',
    passes: 2,
    arguments: { ...kSize, width: { ...kSize.width, start: (p) => Math.max(1, Math.round(p.width / 2)) }, yield: kYield },
  },
  LMX_Trim: {
    group: 'Geometry',
    passes: 1,
    arguments: {
      left: { ...area('part').left, start: (p) => Math.floor(p.width / 4) },
      top: { ...area('part').top, start: (p) => Math.floor(p.height / 4) },
      width: { ...area('part').width, min: 1, start: (p) => Math.max(1, Math.floor(p.width / 2)) },
      height: { ...area('part').height, min: 1, start: (p) => Math.max(1, Math.floor(p.height / 2)) },
      frame_color: kFrame,
      yield: kYield,
    },
  },
  LMX_MakeGradient: {
    group: 'Make',
    passes: 1,
    arguments: {
      ...kMadeSize,
      color1: { ...kColour, start: 0x0012355b },
      color2: { ...kColour, start: 0x00f4a261 },
      yield: kYield,
    },
  },
  LMX_MakeDoubleGradient: {
    group: 'Make',
    passes: 1,
    arguments: {
      ...kMadeSize,
      color1: { ...kColour, start: 0x000b132b },
      color2: { ...kColour, start: 0x00e4572e },
      color3: { ...kColour, start: 0x00ffd166 },
      yield: kYield,
    },
  },
  LMX_GetAverageRGB: { group: 'Measure', passes: 1, arguments: measure },
  LMX_GetAverageHSV: { group: 'Measure', passes: 1, arguments: measure },
  LMX_GetErrorMessage: {
    group: 'Errors',
    passes: 0,
    arguments: { errorCode: { min: 0, max: 50, step: 1, start: 31 } },
  },
  LMX_GetLastError: { group: 'Errors', passes: 0, arguments: {} },
};

export const kGroups = ['Geometry', 'Colour', 'Measure', 'Make', 'Errors'];

/** Sums of averages overflow for more pixels than this of value 255. */
export const kMostAveraged = 8421504;

const resolved = (value, size) => (typeof value === 'function' ? value(size) : value);

/** The facts of one argument for a picture of that size. */
export function factsOf(method, argument, size) {
  const facts = kFacts[method].arguments[argument];
  const { min, max, start } = facts;
  return { ...facts, min: resolved(min, size), max: resolved(max, size), start: resolved(start, size) };
}

/** What a step begins with when its method is chosen. */
export function startOf(method, size) {
  const given = {};
  for (const argument of Object.keys(kFacts[method].arguments)) {
    const { start } = factsOf(method, argument, size);
    if (start !== undefined) given[argument] = start;
  }
  return given;
}

/**
 * Whether four arguments of the method are a rectangle on the picture, and of which kind; null if
 * not.
 */
export function areaOf(method) {
  return kFacts[method].arguments.left?.area ?? null;
}

/** The pixels of a selection as the plug-in clamps it: far ends included. */
export function selectedPixels({ left, top, width, height }, size) {
  const clamp = (value, length) => Math.min(Math.max(value, 0), length - 1);
  const across = clamp(left + width, size.width) - clamp(left, size.width) + 1;
  const down = clamp(top + height, size.height) - clamp(top, size.height) + 1;
  return width < 0 || height < 0 ? 0 : across * down;
}
